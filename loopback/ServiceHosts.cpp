#include "loopback/ServiceHosts.h"

#include <fmt/format.h>

#include <algorithm>

namespace loopback
{

std::vector<std::string> KnownHosts()
{
    return {ApiHost, UploadHost, WebHost, MakerHost, "localhost", "127.0.0.1"};
}

bool IsKnownHost(const std::string &name)
{
    return std::ranges::count(KnownHosts(), name) > 0;
}

std::string ConnectToEntries(int port)
{
    std::string entries;
    for (const char *host : {ApiHost, UploadHost, WebHost, MakerHost})
    {
        entries +=
            fmt::format("{0}{1}:443:127.0.0.1:{2};{1}:80:127.0.0.1:{2}", entries.empty() ? "" : ";", host, port);
    }
    return entries;
}

} // namespace loopback
