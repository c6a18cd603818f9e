#include "tests/ui/DialogDriver_win32.h"
#include "ui/CentredDialogs.h"

#include <atomic>

namespace
{
void Press(HWND dialog, int button)
{
    SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

HWND PlainWindow(DWORD style = WS_POPUP)
{
    return CreateWindowExW(0, TEXT("Static"), nullptr, style, 5, 5, 100, 50, nullptr, nullptr, nullptr, nullptr);
}

TEST(MessageBoxes, AreCentredOnTheirOwner)
{
    const OwnerWindow owner;
    RECT place{};
    for (const int button : {IDOK, IDCANCEL})
    {
        const DialogDriver driver(TEXT("Centred box"), [&](HWND dialog) {
            place = PlaceOf(dialog);
            EXPECT_TRUE(TextsOf(dialog).find(TEXT("What it says")) != WideText::npos);
            Press(dialog, button);
        });
        EXPECT_EQ(CentredMessageBox(owner.Handle(), TEXT("What it says"), TEXT("Centred box"),
                                    MB_OKCANCEL | MB_ICONERROR),
                  button);
        ExpectCentred(place, PlaceOf(owner.Handle()));
        EXPECT_FALSE(IsHookArmed());
        EXPECT_TRUE(AnotherThreadCanHook());
    }
}

TEST(MessageBoxes, OfAMinimizedOwnerAreCentredOnTheMonitor)
{
    const OwnerWindow owner;
    ShowWindow(owner.Handle(), SW_MINIMIZE);
    RECT place{}, workArea{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &workArea, 0);
    const DialogDriver driver(TEXT("Monitor box"), [&](HWND dialog) {
        place = PlaceOf(dialog);
        Press(dialog, IDOK);
    });
    CentredMessageBox(owner.Handle(), TEXT("Text"), TEXT("Monitor box"), MB_OK);
    ExpectCentred(place, workArea);
}

TEST(MessageBoxes, ThatNeverComeLeaveNothing)
{
    HWND gone = nullptr;
    {
        const OwnerWindow owner;
        gone = owner.Handle();
    }
    EXPECT_LE(CentredMessageBox(gone, TEXT("Text"), TEXT("No box"), MB_OK), 0); // 0; Wine says -1
    EXPECT_FALSE(IsHookArmed());
    EXPECT_TRUE(AnotherThreadCanHook());
}

TEST(MessageBoxes, OfTwoThreadsAreCentredEachOnItsOwner)
{
    std::atomic<int> centred{0};
    const auto showBoxes = [&](const WCHAR *caption, RECT ownerPlace) {
        const OwnerWindow owner(ownerPlace);
        for (int i = 0; i < 5; ++i)
        {
            RECT place{};
            const DialogDriver driver(caption, [&](HWND dialog) {
                place = PlaceOf(dialog);
                Press(dialog, IDOK);
            });
            CentredMessageBox(owner.Handle(), TEXT("Text"), caption, MB_OK);
            const RECT on = PlaceOf(owner.Handle());
            centred += place.left == (on.left + on.right) / 2 - (place.right - place.left) / 2;
        }
    };
    std::thread other([&] { showBoxes(TEXT("Box of the other thread"), {600, 500, 1201, 903}); });
    showBoxes(TEXT("Box of the first thread"), {10, 20, 611, 423});
    other.join();
    EXPECT_EQ(centred, 10);
    EXPECT_TRUE(AnotherThreadCanHook());
}

TEST(Hook, MakesASecondThreadWait)
{
    ArmTaskDialogHook();
    EXPECT_TRUE(IsHookArmed());
    std::atomic<bool> has{false};
    std::thread other([&] {
        EXPECT_FALSE(IsHookArmed());
        DisarmHook(); // not this thread's to remove
        ArmMessageBoxHook();
        has = true;
        DisarmHook();
    });
    Sleep(300);
    EXPECT_FALSE(has);
    DisarmHook();
    other.join();
    EXPECT_TRUE(has);
}

TEST(Hook, IsGoneAfterADialogThatNeverCame)
{
    for (const auto arm : {ArmTaskDialogHook, ArmMessageBoxHook})
    {
        arm();
        arm(); // once more, for a dialog in place of the one that didn't come
        DisarmHook();
        EXPECT_FALSE(IsHookArmed());
        EXPECT_TRUE(AnotherThreadCanHook());
        DisarmHook();
    }
}

TEST(Hook, FollowsTheFirstWindowAlone)
{
    ArmMessageBoxHook();
    const HWND dialog = PlainWindow();
    const HWND other = PlainWindow();
    SetActiveWindow(other);
    EXPECT_TRUE(IsHookArmed());
    EXPECT_EQ(PlaceOf(dialog).left, 5);
    SetActiveWindow(dialog);
    EXPECT_FALSE(IsHookArmed());
    EXPECT_NE(PlaceOf(dialog).left, 5);
    EXPECT_EQ(PlaceOf(other).left, 5);
    DestroyWindow(other);
    DestroyWindow(dialog);
}

TEST(Hook, LetsATaskDialogGoAtItsFirstSize)
{
    ArmTaskDialogHook();
    const HWND dialog = PlainWindow();
    const auto procedure = GetWindowLongPtrW(dialog, GWLP_WNDPROC);
    SetActiveWindow(dialog);
    EXPECT_TRUE(IsHookArmed());
    EXPECT_EQ(PlaceOf(dialog).left, 5);
    EXPECT_NE(GetWindowLongPtrW(dialog, GWLP_WNDPROC), procedure);
    SetWindowPos(dialog, nullptr, 0, 0, 300, 200, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_FALSE(IsHookArmed());
    RECT workArea{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &workArea, 0);
    ExpectCentred(PlaceOf(dialog), workArea);
    EXPECT_EQ(GetWindowLongPtrW(dialog, GWLP_WNDPROC), procedure);
    EXPECT_TRUE(AnotherThreadCanHook());
    DestroyWindow(dialog);
}

TEST(Hook, IsGoneAfterATaskDialogThatNeverHadASize)
{
    ArmTaskDialogHook();
    const HWND dialog = PlainWindow();
    SetActiveWindow(dialog);
    DestroyWindow(dialog);
    EXPECT_TRUE(IsHookArmed());
    DisarmHook();
    EXPECT_TRUE(AnotherThreadCanHook());

    // A dialog that is still open when the hook is disarmed is no longer subclassed.
    ArmTaskDialogHook();
    const HWND left = PlainWindow();
    const auto procedure = GetWindowLongPtrW(left, GWLP_WNDPROC);
    SetActiveWindow(left);
    DisarmHook();
    EXPECT_EQ(GetWindowLongPtrW(left, GWLP_WNDPROC), procedure);
    DestroyWindow(left);
}
} // namespace
