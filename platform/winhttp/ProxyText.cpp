#include "platform/winhttp/ProxyText.h"

#include "com/Hresult.h"
#include "com/TextConversion.h"

#include <algorithm>
#include <cctype>

namespace
{
constexpr std::string_view Blanks = " \t\r\n";

std::string_view Trim(std::string_view text)
{
    const size_t start = text.find_first_not_of(Blanks);
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, text.find_last_not_of(Blanks) - start + 1);
}

void AppendEntry(std::string &list, std::string_view entry)
{
    if (!entry.empty())
    {
        list += (list.empty() ? "" : ";");
        list += entry;
    }
}

bool IsAddress(std::string_view text)
{
    return text.find_first_not_of("0123456789.") == std::string_view::npos ||
           text.find(':') != std::string_view::npos;
}
} // namespace

std::string ProxyEntry(std::string_view proxy)
{
    proxy = Trim(proxy);
    std::string scheme;
    if (const size_t end = proxy.find("://"); end != std::string_view::npos)
    {
        std::transform(proxy.begin(), proxy.begin() + static_cast<ptrdiff_t>(end), std::back_inserter(scheme),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        proxy.remove_prefix(end + 3);
    }
    proxy = proxy.substr(0, proxy.find_first_of("/?#"));
    if (const size_t user = proxy.rfind('@'); user != std::string_view::npos)
    {
        proxy.remove_prefix(user + 1);
    }
    const std::string host(proxy);
    if (host.empty() || host.find_first_of(";= \t") != std::string::npos)
    {
        return std::string();
    }
    if (scheme.empty() || scheme == "http")
    {
        return host;
    }
    return scheme == "https" ? "https://" + host : scheme.starts_with("socks") ? "socks=" + host : std::string();
}

std::string ProxyList(const std::vector<std::string> &answers)
{
    std::string list;
    for (const std::string &answer : answers)
    {
        if (answer.starts_with("direct:"))
        {
            break;
        }
        AppendEntry(list, ProxyEntry(answer));
    }
    return list;
}

std::string BypassList(std::string_view noProxy)
{
    std::string list;
    while (!noProxy.empty())
    {
        const size_t end = std::min(noProxy.find_first_of(", ;"), noProxy.size());
        const std::string name(Trim(noProxy.substr(0, end)));
        noProxy.remove_prefix(std::min(end + 1, noProxy.size()));
        if (name.empty())
        {
            continue;
        }
        if (name[0] == '.')
        {
            AppendEntry(list, name.substr(1));
            AppendEntry(list, "*" + name);
            continue;
        }
        AppendEntry(list, name);
        if (!IsAddress(name) && name.find('*') == std::string::npos && name[0] != '<')
        {
            AppendEntry(list, "*." + name);
        }
    }
    return list;
}

WCHAR *GlobalText(std::string_view text)
{
    if (text.empty())
    {
        return nullptr;
    }
    const WideText wide = FromUtf8(text);
    auto *copy = static_cast<WCHAR *>(GlobalAlloc(GMEM_FIXED, (wide.size() + 1) * sizeof(WCHAR)));
    if (copy == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    std::copy_n(wide.c_str(), wide.size() + 1, copy);
    return copy;
}
