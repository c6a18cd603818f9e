// A user before Windows' screen, for scripts: finds windows of other programs by the beginnings of their
// captions, reads them and works on them. A caption's window is a visible one at the top; controls are
// named by their numbers, on whatever page of it they lie.
//
//     host-driver trust                        the authority of HALVORA_CA_FILE, from now on, by this user
//     host-driver has-class CLSID              whether COM makes an object of that class
//     host-driver await CAPTION                until there is such a window
//     host-driver await-end CAPTION            until there is none
//     host-driver await-text CAPTION ID TEXT   until the control's text has TEXT in it
//     host-driver await-button CAPTION ID      until the control can be pressed
//     host-driver await-rows CAPTION ID COUNT  until the list has so many rows
//     host-driver await-row CAPTION ID TEXT    until a row of the list has TEXT in it
//     host-driver screen                       all texts of all windows
//     host-driver press CAPTION ID             without waiting for what comes of it
//     host-driver answer CAPTION BUTTON        a task dialog, until it has gone
//     host-driver follow CAPTION ID NAME       the link with that id or address among the control's links
//     host-driver page CAPTION INDEX           of a property sheet
//     host-driver close CAPTION
//     host-driver picture CAPTION FILE         a PNG of the window as it stands on the screen
//
// Ends with 0 when it is done, with 1 when it can't be.
#include "com/ComPtr.h"
#include "tests/hostwindow/OtherProgram_win32.h"
#include "tests/sheet/WindowPicture.h"
#include "tests/webclient/TrustedAuthority.h"

#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <prsht.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace
{
constexpr DWORD Patience = 60000; // milliseconds

struct Failure
{
    std::wstring words;
};

std::string Utf8(const std::wstring &text)
{
    std::string bytes(text.size() * 3, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

std::wstring AllTexts(HWND window)
{
    std::wstring texts = TextOf(window) + L"\n";
    for (const HWND part : PartsOf(window))
    {
        texts += TextOf(part) + L"\n";
    }
    return texts;
}

// The one that has just this caption goes ahead.
HWND FindTop(const std::wstring &caption)
{
    HWND found = nullptr;
    for (const HWND window : TopWindows())
    {
        const std::wstring text = TextOf(window);
        if (text == caption)
        {
            return window;
        }
        found = found == nullptr && text.starts_with(caption) ? window : found;
    }
    return found;
}

void Await(const std::wstring &what, const std::function<bool()> &condition)
{
    const ULONGLONG end = GetTickCount64() + Patience;
    while (!condition())
    {
        if (GetTickCount64() > end)
        {
            throw Failure{L"waited in vain for: " + what};
        }
        Sleep(50);
    }
}

HWND Top(const std::wstring &caption)
{
    HWND window = nullptr;
    Await(L"window " + caption, [&] { return (window = FindTop(caption)) != nullptr; });
    return window;
}

HWND Part(const std::wstring &caption, const std::wstring &id)
{
    const HWND window = Top(caption);
    HWND part = nullptr;
    Await(L"control " + id, [&] { return (part = FindPart(window, std::stoi(id))) != nullptr; });
    return part;
}

void Answer(const std::wstring &caption, WPARAM button)
{
    const HWND dialog = Top(caption);
    SendMessageW(dialog, WM_NULL, 0, 0); // a modal dialog is ready when its thread takes messages for it
    PostMessageW(dialog, TDM_CLICK_BUTTON, button, 0);
    Await(L"the end of " + caption, [&] { return !IsWindow(dialog) || !IsWindowVisible(dialog); });
}

void Press(HWND control)
{
    Await(L"a control that can be pressed", [&] { return IsWindowEnabled(control) != FALSE; });
    PostMessageW(control, BM_CLICK, 0, 0);
}

bool CanCreate(const std::wstring &text)
{
    CLSID clsid{};
    ComPtr<IUnknown> object;
    return SUCCEEDED(CLSIDFromString(text.c_str(), &clsid)) &&
           SUCCEEDED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object.PutVoid()));
}

void Check(bool isDone, const wchar_t *words)
{
    if (!isDone)
    {
        throw Failure{words};
    }
}

void Say(const std::wstring &text)
{
    const std::string bytes = Utf8(text);
    fwrite(bytes.data(), 1, bytes.size(), stdout);
}

// What a user would see.
void TellScreen()
{
    for (const HWND window : TopWindows())
    {
        Say(L"on the screen: " + AllTexts(window));
    }
}

using Arguments = std::vector<std::wstring>;

struct Command
{
    const wchar_t *name;
    size_t arguments;
    std::function<void(const Arguments &)> run;
};

const Command Commands[] = {
    {L"trust", 0, [](const Arguments &) { Check(TrustedAuthority::Begin(), L"the authority can't be trusted"); }},
    {L"has-class", 1, [](const Arguments &a) { Check(CanCreate(a[0]), L"there is no such class"); }},
    {L"await", 1, [](const Arguments &a) { Top(a[0]); }},
    {L"await-end", 1,
     [](const Arguments &a) { Await(L"the end of " + a[0], [&] { return FindTop(a[0]) == nullptr; }); }},
    {L"await-text", 3,
     [](const Arguments &a) {
         const HWND control = Part(a[0], a[1]);
         Await(a[2], [&] { return TextOf(control).find(a[2]) != std::wstring::npos; });
     }},
    {L"await-button", 2,
     [](const Arguments &a) {
         const HWND control = Part(a[0], a[1]);
         Await(L"button " + a[1], [&] { return IsWindowEnabled(control) != FALSE; });
     }},
    {L"await-rows", 3,
     [](const Arguments &a) {
         const HWND list = Part(a[0], a[1]);
         Await(a[2] + L" rows", [&] { return SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) == std::stoi(a[2]); });
     }},
    {L"await-row", 3,
     [](const Arguments &a) {
         const HWND list = Part(a[0], a[1]);
         const auto holds = [&](const std::wstring &row) { return row.find(a[2]) != row.npos; };
         Await(a[2], [&] { return std::ranges::any_of(RowsOf(list), holds); });
     }},
    {L"screen", 0, [](const Arguments &) { TellScreen(); }},
    {L"press", 2, [](const Arguments &a) { Press(Part(a[0], a[1])); }},
    {L"answer", 2, [](const Arguments &a) { Answer(a[0], std::stoul(a[1])); }},
    {L"follow", 3,
     [](const Arguments &a) {
         const HWND links = Part(a[0], a[1]);
         Await(L"link " + a[2], [&] { return FollowLink(links, a[2]); });
     }},
    {L"page", 2, [](const Arguments &a) { SendMessageW(Top(a[0]), PSM_SETCURSEL, std::stoul(a[1]), 0); }},
    {L"close", 1, [](const Arguments &a) { PostMessageW(Top(a[0]), WM_CLOSE, 0, 0); }},
    {L"picture", 2, [](const Arguments &a) { Check(WriteWindowPicture(Top(a[0]), Utf8(a[1])), L"no picture"); }},
};
} // namespace

int main()
{
    int count = 0;
    wchar_t **words = CommandLineToArgvW(GetCommandLineW(), &count);
    const Arguments all(words + 1, words + count);
    const auto command = std::find_if(std::begin(Commands), std::end(Commands), [&](const Command &candidate) {
        return !all.empty() && all[0] == candidate.name && all.size() == candidate.arguments + 1;
    });
    if (command == std::end(Commands))
    {
        fprintf(stderr, "There is no such command, or it has other arguments.\n");
        return 2;
    }
    CoInitialize(nullptr);
    try
    {
        command->run(Arguments(all.begin() + 1, all.end()));
        return 0;
    }
    catch (const Failure &failure)
    {
        fprintf(stderr, "host-driver: %s\n", Utf8(failure.words).c_str());
        return 1;
    }
}
