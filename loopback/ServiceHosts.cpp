#include "loopback/ServiceHosts.h"

#include <fmt/format.h>

#include <algorithm>

namespace loopback
{

std::string ApiHost()
{
    return HALVORA_API_HOST;
}

std::string UploadHost()
{
    return "up.flickr.com";
}

std::string WebHost()
{
    return HALVORA_WEB_HOST;
}

std::string MakerHost()
{
    return HALVORA_MAKER_HOST;
}

std::vector<std::string> KnownHosts()
{
    return {ApiHost(), UploadHost(), WebHost(), MakerHost(), "localhost", "127.0.0.1"};
}

bool IsKnownHost(const std::string &name)
{
    const auto hosts = KnownHosts();
    return std::find(hosts.begin(), hosts.end(), name) != hosts.end();
}

std::string ConnectToEntries(int port)
{
    std::string entries;
    for (const auto &host : {ApiHost(), UploadHost(), WebHost(), MakerHost()})
    {
        for (const int from : {443, 80})
        {
            entries += fmt::format("{}{}:{}:127.0.0.1:{}", entries.empty() ? "" : ";", host, from, port);
        }
    }
    return entries;
}

} // namespace loopback
