// Programs that are started and left to themselves.
#pragma once

#include <string>
#include <vector>

// The program's file, found along PATH; empty if there is none that can be executed. Entries of PATH
// that aren't absolute don't count.
std::string FindProgram(const std::string &name);

// Starts the program with the arguments as they are: no shell reads them. It runs in a session of its
// own, with /dev/null as its standard files, no other open file of this process and default signals.
// Doesn't wait for it; its end is collected, so that no zombie is left. Returns 0 or an errno value.
int StartDetached(const std::string &file, const std::vector<std::string> &arguments);
