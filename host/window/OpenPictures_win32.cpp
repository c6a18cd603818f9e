#include "host/window/OpenPictures_win32.h"

#include "host/PictureItems.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"

#include <shobjidl.h>

namespace
{
std::wstring PicturePatterns()
{
    std::wstring patterns;
    for (const std::string_view extension : PictureExtensions())
    {
        patterns += (patterns.empty() ? L"*." : L";*.") + WideOf(extension);
    }
    return patterns;
}

std::filesystem::path PathOf(IShellItem &item)
{
    TaskTextOwner path;
    ThrowIfFailed(item.GetDisplayName(SIGDN_FILESYSPATH, path.Put()));
    return std::filesystem::path(path.Get());
}
} // namespace

std::vector<std::filesystem::path> AskForPictures(HWND owner)
{
    ComPtr<IFileOpenDialog> dialog;
    ThrowIfFailed(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IFileOpenDialog),
                                   dialog.PutVoid()));
    const std::wstring pictures = ResourceText(IDS_PICTURE_FILES), all = ResourceText(IDS_ALL_FILES);
    const std::wstring patterns = PicturePatterns();
    const COMDLG_FILTERSPEC filters[] = {{pictures.c_str(), patterns.c_str()}, {all.c_str(), L"*.*"}};
    FILEOPENDIALOGOPTIONS options = 0;
    ThrowIfFailed(dialog->SetFileTypes(ARRAYSIZE(filters), filters));
    ThrowIfFailed(dialog->GetOptions(&options));
    ThrowIfFailed(dialog->SetOptions(options | FOS_ALLOWMULTISELECT | FOS_FORCEFILESYSTEM | FOS_FILEMUSTEXIST));
    const HRESULT shown = dialog->Show(owner);
    if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED))
    {
        return {};
    }
    ThrowIfFailed(shown);
    ComPtr<IShellItemArray> chosen;
    DWORD count = 0;
    ThrowIfFailed(dialog->GetResults(chosen.Put()));
    ThrowIfFailed(chosen->GetCount(&count));
    std::vector<std::filesystem::path> files;
    for (DWORD i = 0; i < count; ++i)
    {
        ComPtr<IShellItem> item;
        ThrowIfFailed(chosen->GetItemAt(i, item.Put()));
        files.push_back(PathOf(*item.Get()));
    }
    return files;
}
