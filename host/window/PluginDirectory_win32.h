// The publishing plug-ins that are registered, found by their component category as the host finds them.
#pragma once

#include <windows.h>

#include <vector>

// The classes of the category of publishing plug-ins, in the system's order. COM must be initialized. An
// empty list also where the system can't say.
std::vector<CLSID> RegisteredPlugins();
