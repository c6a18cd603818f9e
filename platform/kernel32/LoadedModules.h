// The ELF modules of this process. A module's handle is the address at which its first segment is
// mapped, as a Windows module's handle is its base address.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

struct LoadedModule
{
    HMODULE handle = nullptr;
    // Add it to an address in the file to get the address in memory.
    size_t bias = 0;
    // Absolute, links resolved; UTF-8.
    std::string path;
    bool isProgram = false;
    // How many modules the process has unloaded so far. While it doesn't change, a handle still means the
    // same module.
    unsigned long long unloads = 0;
};

// Finds a module by its handle; null is the program itself.
std::optional<LoadedModule> FindModule(HMODULE handle);
std::optional<LoadedModule> FindModuleOfAddress(const void *address);
// Finds a module by its full path or its file name; upper and lower case differ.
std::optional<LoadedModule> FindModuleByName(const std::string &name);
