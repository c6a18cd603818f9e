// The one kind of request that is sent here.
#pragma once

#include "platform/http/EnvironmentProxy.h"

#include <chrono>
#include <string>

struct HttpGetLimits
{
    // The platform's own, but for the whole.
    std::chrono::milliseconds connect{60'000};
    std::chrono::milliseconds whole{60'000};
    std::chrono::seconds stall{30}; // without a byte
};

// Blocks until the reply is there and returns its body, whatever its status. Redirections are followed to http and
// https, up to 10, from https never to http. A body has up to 256 KB, which is what XmlTree takes.
//
// Throws the platform's codes: 0x80072EE6 neither http nor https, 0x80072EE5 no proper address, 0x80072EE7 no such
// host, 0x80072EFD no connection, 0x80072EE2 a limit has passed, 0x80072EFE connection lost, 0x80072F0D, 0x80072F05
// and 0x80072F06 certificate of an unknown authority, out of its time, or of another host, 0x80072F7D no secure
// channel, 0x80072F78 no proper reply or too long a one, 0x80072F7C redirected too often or out of https.
std::string HttpGet(const std::string &url, const ProxyChoice &proxy, const HttpGetLimits &limits = {});
