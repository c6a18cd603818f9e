// The host names under which the service answers.
#pragma once

#include <string>
#include <vector>

namespace loopback
{

std::string ApiHost();
std::string UploadHost();
std::string WebHost();
// The host of the authorization endpoint of the application's maker.
std::string MakerHost();

// Every name in the server's certificate, which also holds 127.0.0.1 as an address.
std::vector<std::string> KnownHosts();

bool IsKnownHost(const std::string &name);

// The value of HALVORA_CONNECT_TO that directs a client's connections to this port.
std::string ConnectToEntries(int port);

} // namespace loopback
