// One HTTP request and its reply, for the request classes.
#pragma once

#include "platform/msxml/ProxyChoice.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using HttpFields = std::vector<std::pair<std::string, std::string>>; // names as they were written

struct HttpTimeouts
{
    // The platform's own; zero is no limit. Looking up the host's name counts to connecting.
    std::chrono::milliseconds resolve{0};
    std::chrono::milliseconds connect{60'000};
    std::chrono::milliseconds send{30'000};    // without a byte leaving
    std::chrono::milliseconds receive{30'000}; // without a byte arriving
};

enum class ProxyUse
{
    Direct,
    Environment, // what http_proxy and the others say
    Named
};

struct HttpOrder
{
    std::string method;
    std::string url; // http or https
    std::string user;
    std::string password;
    HttpFields headers;
    std::optional<std::string> body;
    HttpTimeouts timeouts;
    ProxyUse proxyUse = ProxyUse::Direct;
    ProxyChoice proxies; // of ProxyUse::Named
    std::string proxyUser;
    std::string proxyPassword;
};

struct HttpAnswer
{
    int status = 0;
    std::string statusWords;
    HttpFields headers; // in the order in which they came
    std::string body;
    std::string url; // where the reply came from, after redirections
};

// Blocks until the reply is there. A status of any kind is a reply. Redirections are followed to http and
// https, up to 10, from https never to http; to another host neither user nor password go, nor the headers
// Authorization and Cookie. Replies have up to 256 KB. Certificates are always checked.
//
// Throws the platform's codes: 0x80072EE7 no such host, 0x80072EFD no connection, 0x80072EE2 a limit has
// passed, 0x80072EFE connection lost, 0x80072F0D, 0x80072F05 and 0x80072F06 certificate of an unknown
// authority, out of its time, or of another host, 0x80072F7D no secure channel, 0x80072F78 no proper reply
// or too long a one, 0x80072F7C redirected too often or out of https.
//
// As the web components do, it goes by two variables of the environment: HALVORA_CONNECT_TO, a list of
// "host:port:to-host:to-port" with ';' between them, and HALVORA_CA_FILE, certificates that are trusted
// instead of the system's.
HttpAnswer Exchange(const HttpOrder &order);
