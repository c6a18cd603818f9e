// window_pictures FOLDER: writes a picture of each page of the settings sheet and of each dialog, for the
// documentation. The names end in the screen's dots per inch.
#include "account/AccountRecord.h"
#include "account/AuthorizationDialogs.h"
#include "core/StringTable.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/sheet/SheetDriver.h"
#include "tests/sheet/WindowPicture.h"
#include "ui/CentredDialogs.h"

#include <objbase.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace
{
// In milliseconds, until everything is drawn and no button looks pressed.
constexpr DWORD Settling = 500;

class Album
{
public:
    explicit Album(std::string folder) : m_folder(std::move(folder))
    {
        const HDC screen = GetDC(nullptr);
        m_suffix = "-" + std::to_string(GetDeviceCaps(screen, LOGPIXELSY)) + ".png";
        ReleaseDC(nullptr, screen);
    }

    void Take(HWND window, const std::string &name) const
    {
        // Controls look different under the pointer.
        SetCursorPos(0, 0);
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Sleep(Settling);
        EXPECT_TRUE(WriteWindowPicture(window, m_folder + "/" + name + m_suffix)) << name;
    }

    // Takes a picture of the dialog that show opens on this thread, and closes the dialog.
    void TakeDialog(const std::string &name, const WideText &caption, const std::function<void()> &show) const
    {
        const DialogDriver photographer(caption.c_str(), [&](HWND dialog) {
            Take(dialog, name);
            PostMessageW(dialog, WM_CLOSE, 0, 0);
        });
        show();
    }

private:
    std::string m_folder;
    std::string m_suffix;
};

AccountRecord SampleAccount()
{
    AccountRecord account;
    account.FullName = BstrOwner(TEXT("Jane Doe"));
    account.AccountType = BstrOwner(TEXT("Pro"));
    account.PhotosUrl = BstrOwner(TEXT("https://www.flickr.com/photos/janedoe/"));
    account.MaxFileSize = 209715200;
    account.UploadLeftThisMonth = UnlimitedUpload;
    return account;
}

void TakePages(const Album &album, HWND owner)
{
    SettingsKey key;
    for (const WCHAR *setting : {TEXT("WriteTitle"), TEXT("WriteDescription"), TEXT("WriteTags")})
    {
        key.Set(setting, 1u);
    }
    key.Set(TEXT("JPEGLongDimension"), TEXT("2048 px"));
    key.Set(TEXT("RAWLongDimension"), TEXT("20 cm"));
    const AccountRecord account = SampleAccount();
    SheetAccount shown{account, TEXT("1.96 (Build 401)"),
                       TEXT("Copyright \u00A9 2026 the Halvora Publish to Flickr developers"),
                       [] { return S_OK; }};
    SheetDriver driver([&](const OpenSheet &sheet) {
        const char *names[] = {"photos", "options", "jpeg", "raw", "about"};
        for (int page = 0; page < static_cast<int>(std::size(names)); ++page)
        {
            sheet.SelectPage(page);
            album.Take(sheet.Window(), std::string("sheet-") + names[page]);
        }
    });
    ShowSettingsSheet(owner, shown);
}

void TakeDialogs(const Album &album, HWND owner)
{
    AuthorizationDialogs dialogs;
    album.TakeDialog("dialog-authorize", TEXT("Authorize Halvora Professional"),
                     [&] { dialogs.AskConsent(owner); });
    dialogs.PrepareCompletion();
    album.TakeDialog("dialog-completion", TEXT("Authorization Completion"), [&] { dialogs.AskCompletion(owner); });
    const struct
    {
        const char *name;
        UINT textId;
        UINT captionId;
    } errors[] = {
        {"error-authorization", IDS_AUTHORIZATION_UNREACHABLE, IDS_AUTHORIZATION_ERROR_CAPTION},
        {"error-refresh", IDS_REFRESH_FAILED, IDS_DISPLAY_NAME},
    };
    for (const auto &[name, textId, captionId] : errors)
    {
        const WideText text = LoadStringOrPlaceholder(textId);
        const WideText caption = LoadStringOrPlaceholder(captionId);
        album.TakeDialog(name, caption,
                         [&] { CentredMessageBox(owner, text.c_str(), caption.c_str(), MB_ICONERROR); });
    }
}
} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2)
    {
        std::fputs("usage: window_pictures FOLDER\n", stderr);
        return 2;
    }
    SetProcessDPIAware();
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        const HWND owner = CreateWindowExW(0, TEXT("Static"), TEXT("Halvora"), WS_POPUP | WS_VISIBLE, 0, 0, 1280,
                                           1000, nullptr, nullptr, nullptr, nullptr);
        SetCursorPos(640, 500);
        const Album album(argv[1]);
        TakePages(album, owner);
        TakeDialogs(album, owner);
    }
    CoUninitialize();
    return testing::Test::HasFailure();
}
