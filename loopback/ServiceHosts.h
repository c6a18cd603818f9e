// The host names under which the service answers, and what each is for.
#pragma once

#include <string>
#include <vector>

namespace loopback
{

std::string ApiHost();
std::string UploadHost();
std::string WebHost();
// The authorization host of the application's maker.
std::string MakerHost();

// Every name that the server's certificate holds; 127.0.0.1 stands there as an address too.
std::vector<std::string> KnownHosts();

bool IsKnownHost(const std::string &name);

// The value of HALVORA_CONNECT_TO that leads a client's connections to this port.
std::string ConnectToEntries(int port);

} // namespace loopback
