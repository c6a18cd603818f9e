// The ELF modules of this process. A module's handle is the address at which its first segment is
// mapped, as a Windows module's handle is its base address.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

struct LoadedModule
{
    HMODULE handle = nullptr;
    // What is added to an address of the file to get the address in memory.
    size_t bias = 0;
    // Absolute, links resolved; UTF-8.
    std::string path;
    bool isProgram = false;
    // Counts the modules unloaded so far: what is known of a handle holds while this stays.
    unsigned long long unloads = 0;
};

// By handle; null is the program itself.
std::optional<LoadedModule> FindModule(HMODULE handle);
std::optional<LoadedModule> FindModuleOfAddress(const void *address);
// By full path or by file name alone, exactly as written.
std::optional<LoadedModule> FindModuleByName(const std::string &name);
