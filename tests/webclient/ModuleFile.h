// A COM module as a file, loaded and registered without the registry's help.
#pragma once

#include <windows.h>

// Calls DllRegisterServer of lib/<name> of the build. False if that can't be.
bool RegisterModule(const char *name);

// An exported function of that module; null if there is none.
void *ModuleFunction(const char *name, const char *function);
