// Starts programs that outlive this process.
#pragma once

#include <string>
#include <vector>

// Looks for an executable file of that name in the folders of PATH; empty if there is none. Relative
// entries of PATH are skipped.
std::string FindProgram(const std::string &name);

// Starts the program with exactly these arguments, without a shell. It runs in a session of its own, with
// /dev/null as its standard files, no other open file of this process and default signal handling.
// Doesn't wait for it, but reaps it when it ends, so that no zombie is left. Returns 0 or an errno value.
int StartDetached(const std::string &file, const std::vector<std::string> &arguments);
