// libproxy's program `proxy`, which knows the desktop's settings and runs proxy scripts. It is a
// process of its own because scripts are foreign code, because a bad one takes its process along, and
// because nothing in it limits how long it takes.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// The proxies for the address by the user's settings, as libproxy writes them ("http://host:port",
// "socks://...", "direct://"), the first to be tried first. Nothing if the program is missing, fails or
// isn't done within the limit. The address goes to the program's input, not into its arguments.
std::optional<std::vector<std::string>> AskForProxies(const std::string &url, std::chrono::milliseconds limit);

// The same by the script alone.
std::optional<std::vector<std::string>> AskScript(const std::string &script, const std::string &url,
                                                  std::chrono::milliseconds limit);
