// sheet_pictures FOLDER DPI: writes a picture of each page of the settings sheet, for a person to look at.
#include "account/AccountRecord.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/sheet/SheetDriver.h"
#include "tests/sheet/WindowPicture.h"

#include <objbase.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace
{
constexpr const char *pages[] = {"photos", "options", "jpeg", "raw", "about"};

void Photograph(const OpenSheet &sheet, const std::string &folder, const std::string &dpi)
{
    for (int page = 0; page < static_cast<int>(std::size(pages)); ++page)
    {
        sheet.SelectPage(page);
        if (page == 4)
        {
            OpenSheet::WaitUntil([&] { return !sheet.Text(IDC_ACCOUNT).empty(); });
        }
        RedrawWindow(sheet.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Sleep(400);
        const std::string file = folder + "/sheet-" + pages[page] + "-" + dpi + ".png";
        EXPECT_TRUE(WriteWindowPicture(sheet.Window(), file)) << file;
    }
}
} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 3)
    {
        std::fputs("usage: sheet_pictures FOLDER DPI\n", stderr);
        return 2;
    }
    SetProcessDPIAware();
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        SettingsKey key;
        key.Set(TEXT("WriteTitle"), 1u);
        key.Set(TEXT("WriteDescription"), 1u);
        key.Set(TEXT("WriteTags"), 1u);
        key.Set(TEXT("JPEGLongDimension"), TEXT("2048 px"));
        key.Set(TEXT("RAWLongDimension"), TEXT("20 cm"));
        AccountRecord account;
        account.FullName = BstrOwner(TEXT("Jane Doe"));
        account.AccountType = BstrOwner(TEXT("Pro"));
        account.PhotosUrl = BstrOwner(TEXT("https://www.flickr.com/photos/janedoe/"));
        account.MaxFileSize = 209715200;
        account.UploadLeftThisMonth = UnlimitedUpload;
        SheetAccount shown{account, TEXT("1.96 (Build 401)"),
                           TEXT("Copyright \u00A9 2026 the Halvora Publish to Flickr developers"), [] { return S_OK; }};
        SetCursorPos(640, 500);
        SheetDriver driver([&](const OpenSheet &sheet) { Photograph(sheet, argv[1], argv[2]); });
        ShowSettingsSheet(GetDesktopWindow(), shown);
    }
    CoUninitialize();
    return testing::Test::HasFailure();
}
