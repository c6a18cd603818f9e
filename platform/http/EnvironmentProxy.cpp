#include "platform/http/EnvironmentProxy.h"

#include <cstdlib>
#include <initializer_list>
#include <strings.h>
#include <utility>

namespace
{
// Name and value of the first variable that isn't empty.
std::pair<std::string, std::string> FirstOf(std::initializer_list<const char *> variables)
{
    for (const char *variable : variables)
    {
        const char *value = std::getenv(variable);
        if (value != nullptr && *value != 0)
        {
            return {variable, value};
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
    const auto [variable, server] = IsSecure(url)
                                        ? FirstOf({"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
                                        : FirstOf({"http_proxy", "all_proxy", "ALL_PROXY"});
    return {server, FirstOf({"no_proxy", "NO_PROXY"}).second, variable};
}

std::string ShownProxy(std::string_view server)
{
    const size_t scheme = server.find("://");
    server.remove_prefix(scheme == server.npos ? 0 : scheme + 3);
    server = server.substr(0, server.find('/', server.rfind('@') == server.npos ? 0 : server.rfind('@')));
    return std::string(server.substr(server.rfind('@') + 1)); // npos + 1 is the start
}
