// The host names under which the service answers.
#pragma once

#include <string>
#include <vector>

namespace loopback
{

inline constexpr char ApiHost[] = HALVORA_API_HOST;
inline constexpr char UploadHost[] = "up.flickr.com";
inline constexpr char WebHost[] = HALVORA_WEB_HOST;
// The host of the authorization endpoint of the application's maker.
inline constexpr char MakerHost[] = HALVORA_MAKER_HOST;

// Every name in the server's certificate, which also holds 127.0.0.1 as an address.
inline const std::vector<std::string> KnownHosts = {ApiHost,   UploadHost,  WebHost,
                                                    MakerHost, "localhost", "127.0.0.1"};

} // namespace loopback
