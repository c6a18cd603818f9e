#include "platform/http/EnvironmentProxy.h"

#include <cstdlib>
#include <initializer_list>
#include <strings.h>

namespace
{
std::string FirstOf(std::initializer_list<const char *> variables)
{
    for (const char *variable : variables)
    {
        const char *value = std::getenv(variable);
        if (value != nullptr && *value != 0)
        {
            return value;
        }
    }
    return {};
}

bool IsSecure(std::string_view url)
{
    return url.size() >= 6 && strncasecmp(url.data(), "https:", 6) == 0;
}
} // namespace

ProxyChoice EnvironmentProxy(std::string_view url)
{
    const std::string own = IsSecure(url) ? FirstOf({"https_proxy", "HTTPS_PROXY"}) : FirstOf({"http_proxy"});
    return {own.empty() ? FirstOf({"all_proxy", "ALL_PROXY"}) : own, FirstOf({"no_proxy", "NO_PROXY"})};
}

std::string ShownProxy(std::string_view server)
{
    const size_t scheme = server.find("://");
    server.remove_prefix(scheme == server.npos ? 0 : scheme + 3);
    server = server.substr(0, server.find('/', server.rfind('@') == server.npos ? 0 : server.rfind('@')));
    return std::string(server.substr(server.rfind('@') + 1)); // npos + 1 is the start
}
