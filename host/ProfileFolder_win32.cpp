#include "host/Profile.h"

#include "com/HandleOwner.h"

#include <shlobj.h>

std::filesystem::path Profile::DefaultFolder()
{
    TaskTextOwner folder;
    if (FAILED(SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, folder.Put())))
    {
        return {};
    }
    return std::filesystem::path(folder.Get()) / L"Halvora";
}
