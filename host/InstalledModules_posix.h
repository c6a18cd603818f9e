// The component modules that are installed with the program, and their entries in the registry store. The entries
// of a new profile, and of one whose modules were moved or replaced, are written when the program starts.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

// The folders in which a program looks for its modules: lib/halvora/modules beside its own folder,
// where they are installed, or lib, where they are built; then its own.
std::vector<std::filesystem::path> ModuleFolders();

struct RegistrationReport
{
    std::vector<std::string> problems; // in words; the other modules are registered
};

// Registers each module by its own DllRegisterServer where its entries are missing or name another
// file, and makes the settings key, all in the registry store of the process. Objects can be created only by
// modules in these folders afterwards. There is at least one folder. Throws ProfileError if something has to be
// registered and the store can't be written.
RegistrationReport RegisterInstalledModules(const std::vector<std::filesystem::path> &folders);
