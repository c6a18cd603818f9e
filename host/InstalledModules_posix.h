// The component modules that lie with the program, and their entries in the registry store. A new
// profile, or one whose modules were moved or replaced, is put in order by itself.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

// The folders in which a program looks for its modules: beside its own folder lib/halvora/modules,
// where they are installed, or lib, where they are built; then its own.
std::vector<std::filesystem::path> ModuleFolders();

struct RegistrationReport
{
    std::vector<std::string> problems; // in words; what could be registered is
};

// Registers each module by its own DllRegisterServer where its entries are missing or name another
// file, and makes the settings key. Uses the
// registry store of the process. There is at least one folder.
RegistrationReport RegisterInstalledModules(const std::vector<std::filesystem::path> &folders);
