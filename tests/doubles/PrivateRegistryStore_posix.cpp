#include "tests/doubles/SettingsKey.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

void UsePrivateRegistryStore()
{
    const auto file =
        std::filesystem::temp_directory_path() / ("halvora-test-" + std::to_string(getpid()) + ".reg");
    setenv("HALVORA_REGISTRY_FILE", file.c_str(), 0);
}
