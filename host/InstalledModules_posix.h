// The component modules that are installed with the program.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The folders in which a program looks for its modules: lib/halvora/modules beside its own folder,
// where they are installed, or lib, where they are built; then its own.
std::vector<std::filesystem::path> ModuleFolders();

// Makes the classes of the plug-in and of the web components known to the process, and makes the settings key where
// it is missing. From then on objects are created by modules of these folders and by the platform's own alone; at
// least one folder. Returns in words which modules are missing. Throws ProfileError if the key can't be made.
std::vector<std::string> UseInstalledModules(const std::vector<std::filesystem::path> &folders);
