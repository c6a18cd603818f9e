#include "host/Profile.h"

#include <cstdlib>

namespace fs = std::filesystem;

fs::path Profile::DefaultFolder()
{
    // The XDG base directory specification: a relative path is to be ignored.
    if (const char *data = std::getenv("XDG_DATA_HOME"); data != nullptr && fs::path(data).is_absolute())
    {
        return fs::path(data) / "halvora";
    }
    if (const char *home = std::getenv("HOME"); home != nullptr && *home != '\0')
    {
        return fs::path(home) / ".local" / "share" / "halvora";
    }
    return fs::path();
}
