// The layout of the sheet as a user sees it, at the screen's dots per inch.
#include "account/AccountRecord.h"
#include "core/ThisModule.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "settings/SheetLayout_win32.h"
#include "tests/sheet/SheetDriver.h"
#include "ui/ActivationContext_win32.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace
{
int DotsPerInch()
{
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}

// Everything in pixels; places of children within the sheet's client area.
struct Measures
{
    SIZE Base; // of 4 and 8 dialog units
    RECT Window;
    RECT Client;
    RECT Tabs;
    RECT Page;
    RECT Ok;
    RECT Cancel;
    RECT Link;
    RECT Animation; // within the tab control
    RECT TabsClient;
};

RECT PlaceIn(HWND parent, HWND window)
{
    RECT place{};
    if (window != nullptr)
    {
        GetWindowRect(window, &place);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT *>(&place), 2);
    }
    return place;
}

Measures Measure(const OpenSheet &sheet)
{
    const HWND window = sheet.Window();
    Measures measures{};
    RECT base{0, 0, 4, 8};
    EXPECT_TRUE(MapDialogRect(window, &base));
    measures.Base = {base.right, base.bottom};
    GetWindowRect(window, &measures.Window);
    GetClientRect(window, &measures.Client);
    measures.Tabs = PlaceIn(window, sheet.Tabs());
    measures.Page = PlaceIn(window, FindWindowExW(window, nullptr, TEXT("#32770"), nullptr));
    measures.Ok = PlaceIn(window, sheet.Button(IDOK));
    measures.Cancel = PlaceIn(window, sheet.Button(IDCANCEL));
    measures.Link = PlaceIn(window, sheet.HomepageLink());
    measures.Animation = PlaceIn(sheet.Tabs(), sheet.Animation());
    GetClientRect(sheet.Tabs(), &measures.TabsClient);
    return measures;
}

SIZE SizeOf(const RECT &place)
{
    return {place.right - place.left, place.bottom - place.top};
}

// A sheet of the same pages without anything of ours but their templates.
Measures MeasurePlainSheet()
{
    const ActivationContext commonControls6;
    HPROPSHEETPAGE pages[5];
    const UINT templates[] = {IDD_PHOTOS, IDD_OPTIONS, IDD_JPEG, IDD_RAW, IDD_ABOUT};
    for (size_t i = 0; i < std::size(pages); ++i)
    {
        PROPSHEETPAGEW page{sizeof(page)};
        page.hInstance = ThisModule();
        page.pszTemplate = MAKEINTRESOURCEW(templates[i]);
        page.pfnDlgProc = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
        pages[i] = CreatePropertySheetPageW(&page);
    }
    PROPSHEETHEADERW header{sizeof(header)};
    header.dwFlags = PSH_NOAPPLYNOW | PSH_NOCONTEXTHELP;
    header.hInstance = ThisModule();
    header.hwndParent = GetDesktopWindow();
    header.pszCaption = MAKEINTRESOURCEW(IDS_DISPLAY_NAME);
    header.nPages = std::size(pages);
    header.phpage = pages;
    Measures measures{};
    SheetDriver driver([&](const OpenSheet &sheet) { measures = Measure(sheet); });
    PropertySheetW(&header);
    return measures;
}

Measures MeasureOurSheet(const WCHAR *photosUrl, std::function<void(const OpenSheet &)> act = {})
{
    AccountRecord account;
    account.PhotosUrl = BstrOwner(photosUrl);
    SheetAccount shown{account, {}, {}, [] { return S_OK; }};
    Measures measures{};
    SheetDriver driver([&](const OpenSheet &sheet) {
        measures = Measure(sheet);
        if (act)
        {
            act(sheet);
        }
    });
    ShowSettingsSheet(GetDesktopWindow(), shown);
    return measures;
}
} // namespace

TEST(SheetLayout, RunsOnAScreenOfTheDotsThatTheTestIsFor)
{
    SetProcessDPIAware();
    const char *told = std::getenv("HALVORA_DPI");
    EXPECT_EQ(DotsPerInch(), told ? std::atoi(told) : 96);
}

TEST(SheetLayout, MarginsAreEqualAndTheButtonsWhole)
{
    const Measures plain = MeasurePlainSheet();
    const Measures ours = MeasureOurSheet(TEXT("http://photos/"));
    const auto across = [&](int units) { return MulDiv(units, plain.Base.cx, 4); };
    const auto down = [&](int units) { return MulDiv(units, plain.Base.cy, 8); };
    ASSERT_EQ(plain.Tabs.left, across(4)) << "the platform's standard layout";
    ASSERT_EQ(plain.Tabs.top, down(4));

    const int rightMargin = ours.Client.right - ours.Tabs.right;
    EXPECT_NEAR(ours.Tabs.left, rightMargin, 1);
    EXPECT_NEAR(ours.Tabs.left, across(10), 2);
    EXPECT_NEAR(ours.Tabs.top, down(8), 2);
    EXPECT_EQ(SizeOf(ours.Tabs).cx, SizeOf(plain.Tabs).cx);
    EXPECT_EQ(SizeOf(ours.Tabs).cy, SizeOf(plain.Tabs).cy);
    EXPECT_EQ(ours.Page.left - ours.Tabs.left, plain.Page.left - plain.Tabs.left);
    EXPECT_EQ(ours.Page.top - ours.Tabs.top, plain.Page.top - plain.Tabs.top);

    for (const RECT &button : {ours.Ok, ours.Cancel})
    {
        EXPECT_EQ(SizeOf(button).cx, across(50));
        EXPECT_EQ(SizeOf(button).cy, down(16));
        EXPECT_GE(button.top, ours.Tabs.bottom + down(4)) << "a gap below the pages";
        EXPECT_GE(ours.Client.bottom - button.bottom, rightMargin / 2);
    }
    EXPECT_GE(ours.Cancel.left, ours.Ok.right + across(3));
    EXPECT_NEAR(ours.Client.right - ours.Cancel.right, rightMargin, 2);
}

TEST(SheetLayout, AddsTheAnimationAndTheLink)
{
    const Measures ours = MeasureOurSheet(TEXT("http://photos/"));
    EXPECT_EQ(SizeOf(ours.Animation).cx, 16);
    EXPECT_EQ(SizeOf(ours.Animation).cy, 16);
    EXPECT_EQ(ours.Animation.top, 0);
    EXPECT_EQ(ours.TabsClient.right - ours.Animation.right, MulDiv(3, ours.Base.cx, 4));

    const SIZE link = SizeOf(ours.Link);
    EXPECT_GT(link.cx, 4 * link.cy) << "on one line";
    EXPECT_LT(ours.Link.right, ours.Ok.left);
    EXPECT_EQ(ours.Link.left - ours.Tabs.left, MulDiv(1, ours.Base.cx, 8));
    const int middle = (ours.Ok.top + ours.Ok.bottom) / 2 - MulDiv(1, ours.Base.cy, 8);
    EXPECT_NEAR((ours.Link.top + ours.Link.bottom) / 2, middle, 1);

    EXPECT_EQ(SizeOf(MeasureOurSheet(TEXT("")).Link).cx, 0) << "no address, no link";
}

TEST(SheetLayout, ALayoutThatIsNotTheStandardOneStays)
{
    MeasureOurSheet(TEXT(""), [](const OpenSheet &sheet) {
        const Measures before = Measure(sheet);
        TightenLayout(sheet.Window());
        const Measures after = Measure(sheet);
        EXPECT_EQ(std::memcmp(&before, &after, sizeof(before)), 0);
    });
}

TEST(SheetLayout, OpensUnderThePointerAndATenthOfAnInchLower)
{
    const int lower = (DotsPerInch() * 10 + 48) / 96;
    SetCursorPos(640, 500);
    const RECT middle = MeasureOurSheet(TEXT("")).Window;
    EXPECT_NEAR((middle.left + middle.right) / 2, 640, 1);
    EXPECT_NEAR((middle.top + middle.bottom) / 2, 500 + lower, 1);
    SetCursorPos(0, 0);
    const RECT corner = MeasureOurSheet(TEXT("")).Window;
    EXPECT_EQ(corner.left, 0);
    EXPECT_EQ(corner.top, lower);
}
