// The proxy that the environment names: the one rule for uploads and for the verifier.
#pragma once

#include <string>
#include <string_view>

// Both texts in libcurl's form, to be taken apart by it.
struct ProxyChoice
{
    std::string server;   // empty for a direct connection
    std::string bypass;   // hosts that are connected to directly
    std::string variable; // that names the server
};

// The server is https_proxy, or http_proxy for an http address, or else all_proxy; the bypass list is no_proxy.
// Names in small letters come before those in capitals, which http_proxy doesn't have: a web server sets
// HTTP_PROXY from what its visitor sends. Empty variables don't count.
ProxyChoice EnvironmentProxy(std::string_view url);

// "host:port", to be shown: without the name and password that a proxy's address may hold.
std::string ShownProxy(std::string_view server);
