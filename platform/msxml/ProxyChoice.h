// The proxy of a request, chosen from lists in WinHTTP's form.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Servers: "[scheme=][kind://]host[:port]", separated by ';' or blanks: an entry without a scheme serves
// all that have no entry of their own, "socks=" too, after the others. Bypass list: host patterns with
// '*', "<local>" for names without a dot, each perhaps with "scheme://" in front and ":port" behind;
// separated the same way. Case makes no difference.
class ProxyChoice
{
public:
    ProxyChoice() = default;
    ProxyChoice(std::string_view servers, std::string_view bypass);

    // "http://host:port", with 80 for a port that isn't named, or "socks5h://host:port" with 1080; nothing
    // for a direct connection. An address without a host gets none.
    std::optional<std::string> For(std::string_view url) const;

private:
    struct Server
    {
        std::string scheme; // empty: all
        std::string address;
    };

    bool IsBypassed(std::string_view scheme, std::string_view host, std::string_view port) const;

    std::vector<Server> m_servers;
    std::vector<std::string> m_bypass;
};
