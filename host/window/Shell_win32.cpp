#include "host/window/Shell_win32.h"

#include "host/PictureItems.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"

#include <shlobj.h>

#include <string>
#include <utility>

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

constexpr wchar_t UninstallKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\HalvoraPublishToFlickr";

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

std::wstring FolderOf(const std::wstring &file)
{
    return file.substr(0, file.rfind(L'\\'));
}

void AddToStartMenu(const std::wstring &program)
{
    ComPtr<IShellLinkW> link;
    ThrowIfFailed(
        CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, link.PutVoid()));
    ThrowIfFailed(link->SetPath(program.c_str()));
    ThrowIfFailed(link->SetWorkingDirectory(FolderOf(program).c_str()));
    ThrowIfFailed(link->SetDescription(L"Uploads photos to Flickr"));
    ThrowIfFailed(link.As<IPersistFile>()->Save(EntryFile().c_str(), TRUE));
}

// Values and meaning: "Uninstall Registry Key" in the documentation of Windows Installer.
void AddToInstalledApps(const std::wstring &program)
{
    RegistryKeyOwner key;
    ThrowIfFailed(HRESULT_FROM_WIN32(
        RegCreateKeyExW(HKEY_CURRENT_USER, UninstallKey, 0, nullptr, 0, KEY_WRITE, nullptr, key.Put(), nullptr)));
    const std::wstring uninstall = L"\"" + FolderOf(program) + L"\\uninstall.cmd\"";
    const std::pair<const wchar_t *, std::wstring> texts[] = {{L"DisplayName", L"Halvora Publish to Flickr"},
                                                              {L"DisplayVersion", WideOf(HALVORA_VERSION)},
                                                              {L"Publisher", L"Halvora"},
                                                              {L"DisplayIcon", program},
                                                              {L"UninstallString", uninstall},
                                                              {L"QuietUninstallString", uninstall + L" /quiet"}};
    for (const auto &[name, text] : texts)
    {
        ThrowIfFailed(HRESULT_FROM_WIN32(RegSetValueExW(key.Get(), name, 0, REG_SZ,
                                                        reinterpret_cast<const BYTE *>(text.c_str()),
                                                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)))));
    }
    for (const wchar_t *const name : {L"NoModify", L"NoRepair"})
    {
        constexpr DWORD yes = 1;
        ThrowIfFailed(HRESULT_FROM_WIN32(
            RegSetValueExW(key.Get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&yes), sizeof(yes))));
    }
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

HRESULT AddShellEntries() noexcept
{
    return AtBoundary([] {
        const std::wstring program = ProgramFile();
        AddToInstalledApps(program);
        AddToStartMenu(program);
        return S_OK;
    });
}

HRESULT RemoveShellEntries() noexcept
{
    return AtBoundary([] {
        const LSTATUS key = RegDeleteKeyW(HKEY_CURRENT_USER, UninstallKey);
        const DWORD file = DeleteFileW(EntryFile().c_str()) ? ERROR_SUCCESS : GetLastError();
        for (const LONG error : {key, static_cast<LONG>(file)})
        {
            ThrowIfFailed(error == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(error));
        }
        return S_OK;
    });
}
