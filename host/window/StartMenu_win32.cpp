#include "host/window/StartMenu_win32.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"

#include <shlobj.h>

#include <string>

namespace
{
std::wstring EntryFile()
{
    TaskTextOwner folder;
    ThrowIfFailed(SHGetKnownFolderPath(FOLDERID_Programs, KF_FLAG_CREATE, nullptr, folder.Put()));
    return std::wstring(folder.Get()) + L"\\Halvora Publish to Flickr.lnk";
}

std::wstring ProgramFile()
{
    std::wstring file(32768, L'\0'); // the longest path of Windows
    file.resize(GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size())));
    return file;
}
} // namespace

HRESULT AddToStartMenu() noexcept
{
    return AtBoundary([] {
        ComPtr<IShellLinkW> link;
        ThrowIfFailed(
            CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, link.PutVoid()));
        const std::wstring program = ProgramFile();
        ThrowIfFailed(link->SetPath(program.c_str()));
        ThrowIfFailed(link->SetWorkingDirectory(program.substr(0, program.rfind(L'\\')).c_str()));
        ThrowIfFailed(link->SetDescription(L"Uploads photos to Flickr"));
        return link.As<IPersistFile>()->Save(EntryFile().c_str(), TRUE);
    });
}

HRESULT RemoveFromStartMenu() noexcept
{
    return AtBoundary([] {
        if (DeleteFileW(EntryFile().c_str()))
        {
            return S_OK;
        }
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? S_FALSE : HRESULT_FROM_WIN32(error);
    });
}
