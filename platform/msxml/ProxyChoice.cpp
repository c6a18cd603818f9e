#include "platform/msxml/ProxyChoice.h"

#include <algorithm>

namespace
{
std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    return lower;
}

std::vector<std::string> Split(std::string_view list)
{
    constexpr std::string_view separators = "; \t\r\n";
    std::vector<std::string> entries;
    while (!list.empty())
    {
        const size_t end = std::min(list.find_first_of(separators), list.size());
        if (end > 0)
        {
            entries.push_back(Lower(list.substr(0, end)));
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return entries;
}

// Cuts off what stands in front of the mark and gives it back; nothing if there is no mark.
std::string CutFront(std::string_view &text, std::string_view mark)
{
    const size_t end = text.find(mark);
    if (end == std::string_view::npos)
    {
        return std::string();
    }
    const std::string front(text.substr(0, end));
    text.remove_prefix(end + mark.size());
    return front;
}

// The ':' ahead of a port; the colons of an IPv6 address are within brackets, or else several.
size_t FindPort(std::string_view host)
{
    const size_t colon = host.rfind(':');
    const bool isPort = colon != std::string_view::npos && host.find(']', colon) == std::string_view::npos &&
                        (host[0] == '[' || host.find(':') == colon);
    return isPort ? colon : std::string_view::npos;
}

bool Matches(std::string_view text, std::string_view pattern)
{
    size_t at = 0, in = 0, star = std::string_view::npos, retry = 0;
    while (at < text.size())
    {
        if (in < pattern.size() && pattern[in] == '*')
        {
            star = in++;
            retry = at;
        }
        else if (in < pattern.size() && pattern[in] == text[at])
        {
            ++in;
            ++at;
        }
        else if (star != std::string_view::npos)
        {
            in = star + 1;
            at = ++retry;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}
} // namespace

ProxyChoice::ProxyChoice(std::string_view servers, std::string_view bypass) : m_bypass(Split(bypass))
{
    for (const std::string &entry : Split(servers))
    {
        std::string_view rest = entry;
        const std::string scheme = CutFront(rest, "=");
        const std::string kind = CutFront(rest, "://");
        rest = rest.substr(0, rest.find('/'));
        if (rest.empty())
        {
            continue;
        }
        const bool isSocks = scheme == "socks" || kind.starts_with("socks");
        std::string address = std::string(isSocks ? "socks5h" : kind == "https" ? "https" : "http") + "://";
        address += rest;
        if (FindPort(rest) == std::string_view::npos)
        {
            address += isSocks ? ":1080" : kind == "https" ? ":443" : ":80";
        }
        m_servers.push_back({scheme, std::move(address)});
    }
}

bool ProxyChoice::IsBypassed(std::string_view scheme, std::string_view host, std::string_view port) const
{
    return std::any_of(m_bypass.begin(), m_bypass.end(), [&](const std::string &entry) {
        if (entry == "<local>")
        {
            return host.find_first_of(".:") == std::string_view::npos;
        }
        std::string_view rest = entry;
        if (const std::string only = CutFront(rest, "://"); !only.empty() && only != scheme)
        {
            return false;
        }
        const size_t colon = rest.empty() ? std::string_view::npos : FindPort(rest);
        if (colon != std::string_view::npos && rest.substr(colon + 1) != port)
        {
            return false;
        }
        return Matches(host, rest.substr(0, colon));
    });
}

std::optional<std::string> ProxyChoice::For(std::string_view url) const
{
    const std::string lower = Lower(url);
    std::string_view host = lower;
    const std::string scheme = CutFront(host, "://");
    host = host.substr(0, host.find_first_of("/?#"));
    if (const size_t user = host.rfind('@'); user != std::string_view::npos)
    {
        host.remove_prefix(user + 1);
    }
    if (host.empty())
    {
        return std::nullopt;
    }
    std::string_view port = scheme == "https" ? "443" : "80";
    if (const size_t colon = FindPort(host); colon != std::string_view::npos)
    {
        port = host.substr(colon + 1);
        host = host.substr(0, colon);
    }
    if (IsBypassed(scheme, host, port))
    {
        return std::nullopt;
    }
    for (const std::string &wanted : {scheme, std::string(), std::string("socks")})
    {
        const auto found = std::find_if(m_servers.begin(), m_servers.end(),
                                        [&](const Server &server) { return server.scheme == wanted; });
        if (found != m_servers.end())
        {
            return found->address;
        }
    }
    return std::nullopt;
}
