// Applies a registry script to the registry.
#pragma once

#include "platform/atl/RegistryScript.h"

// Makes keys and values in the order of the script. If that fails, what the script can remove is removed again
// before the failure is thrown.
void ApplyScript(const std::vector<ScriptRoot> &roots);

// Removes named values, and keys from the last to the first. A missing key or value is no failure. A key below which
// something else lies stays, unless it is one to be removed by force.
void RevertScript(const std::vector<ScriptRoot> &roots);
