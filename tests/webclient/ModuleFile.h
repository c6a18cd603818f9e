// A COM module as a file, loaded without COM's help.
#pragma once

#include <windows.h>

#include <string>

// Full path of the module <name> of the build: a DLL or a shared object.
std::string ModulePath(const char *name);

// An exported function of that module, which stays loaded; null if there is none.
void *ModuleFunction(const char *name, const char *function);
