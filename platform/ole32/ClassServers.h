// Which modules may be loaded to create objects.
#pragma once

#include <filesystem>
#include <vector>

// From now on a class whose registry entry names a file in none of these folders can't be created: the result is
// E_ACCESSDENIED, and the file isn't loaded. A path in the registry's store would otherwise be code that anyone
// who can write that file runs. Without a call every registered module is loaded. Any thread.
void LoadClassServersOnlyFrom(std::vector<std::filesystem::path> folders);
