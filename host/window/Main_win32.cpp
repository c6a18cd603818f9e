// HalvoraPublish.exe: [--profile FOLDER] [PICTURE or FOLDER]...
// HalvoraPublish.exe --shell-entries add|remove, for the installer: no window; the exit code is 0 or 1.
#include "host/window/HostWindow_win32.h"
#include "host/window/Shell_win32.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "host/SystemWords.h"

#include "com/HandleOwner.h"
#include "com/Hresult.h"

#include <objbase.h>
#include <shellapi.h>

#include <string>
#include <vector>

namespace
{
struct Arguments
{
    std::filesystem::path profile; // empty: the default
    std::vector<std::filesystem::path> pictures;
    std::wstring shellEntries; // "add" or "remove"; empty: show the window
};

Arguments ReadArguments()
{
    int count = 0;
    wchar_t **const texts = CommandLineToArgvW(GetCommandLineW(), &count);
    const LocalTextOwner words(reinterpret_cast<wchar_t *>(texts)); // pointers and texts in one block
    Arguments arguments;
    for (int i = 1; i < count; ++i)
    {
        if (std::wstring_view(texts[i]) == L"--profile" && i + 1 < count)
        {
            arguments.profile = texts[++i];
        }
        else if (std::wstring_view(texts[i]) == L"--shell-entries" && i + 1 < count)
        {
            arguments.shellEntries = texts[++i];
        }
        else
        {
            arguments.pictures.emplace_back(texts[i]);
        }
    }
    return arguments;
}

int Run(int show)
{
    const Arguments arguments = ReadArguments();
    if (!arguments.shellEntries.empty())
    {
        return FAILED(arguments.shellEntries == L"add" ? AddShellEntries() : RemoveShellEntries()) ? 1 : 0;
    }
    const Profile profile(arguments.profile.empty() ? Profile::DefaultFolder() : arguments.profile);
    HostWindow host(profile);
    host.AddPictures(arguments.pictures);
    ShowWindow(host.Get(), show);
    const HACCEL keys = LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_ACCELERATORS));
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (!TranslateAcceleratorW(host.Get(), keys, &message) && !IsDialogMessageW(host.Get(), &message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    return 0;
}

int Complain(const std::wstring &words)
{
    MessageBoxW(nullptr, words.c_str(), ResourceText(IDS_TITLE).c_str(), MB_OK | MB_ICONERROR);
    return 1;
}
} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int show)
{
    // The plug-in's dialogs and the one that opens files need it.
    const HRESULT apartment = OleInitialize(nullptr);
    int code = 0;
    try
    {
        code = Run(show);
    }
    catch (const HresultError &error)
    {
        code = Complain(ResourceText(IDS_VERB_FAILED, WideOf(SystemWords(error.Code()))));
    }
    catch (const std::exception &error)
    {
        code = Complain(WideOf(error.what()));
    }
    if (SUCCEEDED(apartment))
    {
        OleUninitialize();
    }
    return code;
}
