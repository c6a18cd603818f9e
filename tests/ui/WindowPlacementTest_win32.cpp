#include "tests/ui/DialogDriver_win32.h"
#include "ui/WindowPlacement_win32.h"

namespace
{
HWND Child(HWND parent)
{
    return CreateWindowExW(0, TEXT("Static"), nullptr, WS_CHILD | WS_VISIBLE, 3, 4, 101, 51, parent, nullptr,
                           nullptr, nullptr);
}

RECT PlaceIn(HWND parent, HWND child)
{
    RECT place = PlaceOf(child);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT *>(&place), 2);
    return place;
}

TEST(Windows, AreCentredInTheirParent)
{
    const OwnerWindow parent;
    const HWND child = Child(parent.Handle());
    CentreWindow(child);
    RECT inside{};
    GetClientRect(parent.Handle(), &inside);
    ExpectCentred(PlaceIn(parent.Handle(), child), inside);
}

TEST(Windows, LargerThanTheScreenStartInItsCorner)
{
    RECT workArea{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &workArea, 0);
    const HWND window = CreateWindowExW(0, TEXT("Static"), nullptr, WS_POPUP, 50, 60, workArea.right + 300,
                                        workArea.bottom + 200, nullptr, nullptr, nullptr, nullptr);
    CentreWindow(window);
    EXPECT_EQ(PlaceOf(window).left, workArea.left);
    EXPECT_EQ(PlaceOf(window).top, workArea.top);
    CentreOnPointer(window);
    EXPECT_EQ(PlaceOf(window).left, workArea.left);
    EXPECT_EQ(PlaceOf(window).right - PlaceOf(window).left, workArea.right + 300);
    DestroyWindow(window);
}

TEST(Windows, ComeToThePointer)
{
    const HWND window =
        CreateWindowExW(0, TEXT("Static"), nullptr, WS_POPUP, 0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(SetCursorPos(500, 400));
    CentreOnPointer(window);
    EXPECT_EQ(PlaceOf(window).left, 400);
    EXPECT_EQ(PlaceOf(window).top, 350);
    ASSERT_TRUE(SetCursorPos(2, 3));
    CentreOnPointer(window);
    EXPECT_EQ(PlaceOf(window).left, 0);
    EXPECT_EQ(PlaceOf(window).top, 0);
    DestroyWindow(window);
}

TEST(Windows, AreShiftedAndEnlargedInTheirParent)
{
    const OwnerWindow parent;
    const HDC context = GetDC(parent.Handle());
    ASSERT_EQ(GetDeviceCaps(context, LOGPIXELSX), 96);
    ReleaseDC(parent.Handle(), context);
    const HWND child = Child(parent.Handle());
    MoveChildBy(parent.Handle(), child, 7, -2, 10, -1);
    const RECT place = PlaceIn(parent.Handle(), child);
    EXPECT_EQ(place.left, 10);
    EXPECT_EQ(place.top, 3); // -2 + 0.5 is cut off to -1
    EXPECT_EQ(place.right - place.left, 111);
    EXPECT_EQ(place.bottom - place.top, 50);
}
} // namespace
