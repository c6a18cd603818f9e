#include "host/Profile.h"

#include "com/WholeFile.h"

std::filesystem::path Profile::DefaultFolder()
{
    const std::filesystem::path data = UserDataFolder();
    return data.empty() ? data : data / "halvora";
}
