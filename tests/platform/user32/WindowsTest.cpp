// Uses message-only windows, which need no display in either build.
#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace
{
std::vector<UINT> received;
bool refuseCreation = false;

LRESULT CALLBACK RecordingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    received.push_back(message);
    if (message == WM_CREATE && refuseCreation)
    {
        return -1;
    }
    return message == WM_USER + 1 ? static_cast<LRESULT>(wParam * 100 + lParam)
                                  : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT CALLBACK Subclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto before = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return CallWindowProcW(before, window, message, wParam, lParam) + (message == WM_USER + 1);
}

class Windows : public testing::Test
{
protected:
    void SetUp() override
    {
        received.clear();
        refuseCreation = false;
        WNDCLASSEXW description{sizeof(description)};
        description.lpfnWndProc = RecordingProcedure;
        description.cbWndExtra = 2 * sizeof(void *);
        description.lpszClassName = TEXT("RecordingWindow");
        description.hInstance = GetModuleHandleW(nullptr);
        ASSERT_NE(RegisterClassExW(&description), 0);
    }

    void TearDown() override { EXPECT_TRUE(UnregisterClassW(TEXT("RecordingWindow"), GetModuleHandleW(nullptr))); }

    static HWND Create(const WCHAR *name = TEXT("RECORDINGwindow"), HWND parent = HWND_MESSAGE)
    {
        return CreateWindowExW(0, name, TEXT("first"), 0, 0, 0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr),
                               nullptr);
    }

    static WideText TextOf(HWND window)
    {
        WCHAR text[64];
        const int length = GetWindowTextW(window, text, ARRAYSIZE(text));
        EXPECT_EQ(GetWindowTextLengthW(window), length);
        return WideText(text, length);
    }
};

bool Saw(UINT message)
{
    return std::find(received.begin(), received.end(), message) != received.end();
}

TEST_F(Windows, LiveFromCreationToDestruction)
{
    const HWND window = Create();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(Saw(WM_NCCREATE) && Saw(WM_CREATE));
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 7, 3), 703);
    EXPECT_FALSE(UnregisterClassW(TEXT("RecordingWindow"), GetModuleHandleW(nullptr)));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CLASS_HAS_WINDOWS});
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_EQ(received[received.size() - 2], UINT{WM_DESTROY});
    EXPECT_EQ(received.back(), UINT{WM_NCDESTROY});
    EXPECT_FALSE(IsWindow(window));
    SetLastError(0);
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 1, 1), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
    EXPECT_FALSE(DestroyWindow(window));
}

TEST_F(Windows, KeepTheirText)
{
    const HWND window = Create();
    EXPECT_EQ(TextOf(window), TEXT("first"));
    EXPECT_TRUE(SetWindowTextW(window, TEXT("second")));
    EXPECT_EQ(TextOf(window), TEXT("second"));
    WCHAR brief[4];
    EXPECT_EQ(GetWindowTextW(window, brief, 4), 3);
    EXPECT_EQ(WideText(brief), TEXT("sec"));
    EXPECT_TRUE(SetWindowTextW(window, nullptr));
    EXPECT_EQ(TextOf(window), TEXT(""));
    DestroyWindow(window);
}

TEST_F(Windows, KeepWordsOfTheirUsers)
{
    const HWND window = Create();
    EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, 42), 0);
    EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, 43), 42);
    EXPECT_EQ(SetWindowLongPtrW(window, sizeof(void *), 44), 0);
    EXPECT_EQ(GetWindowLongPtrW(window, sizeof(void *)), 44);
    EXPECT_EQ(GetWindowLongPtrW(window, 0), 0);
    SetLastError(0);
    EXPECT_EQ(GetWindowLongPtrW(window, 2 * sizeof(void *)), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_INDEX});
    DestroyWindow(window);
}

TEST_F(Windows, KeepPropertiesOfOthers)
{
    const HWND window = Create();
    const auto value = reinterpret_cast<HANDLE>(42);
    EXPECT_EQ(GetPropW(window, TEXT("Halvora.Test")), nullptr);
    EXPECT_TRUE(SetPropW(window, TEXT("Halvora.Test"), value));
    EXPECT_EQ(GetPropW(window, TEXT("HALVORA.test")), value);
    EXPECT_EQ(GetPropW(window, TEXT("Halvora")), nullptr);
    EXPECT_TRUE(SetPropW(window, TEXT("halvora.Test"), window));
    EXPECT_EQ(RemovePropW(window, TEXT("Halvora.Test")), window);
    EXPECT_EQ(GetPropW(window, TEXT("Halvora.Test")), nullptr);
    EXPECT_EQ(RemovePropW(window, TEXT("Halvora.Test")), nullptr);
    DestroyWindow(window);
    SetLastError(0);
    EXPECT_FALSE(SetPropW(window, TEXT("Halvora.Test"), value));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
    EXPECT_EQ(GetPropW(window, TEXT("Halvora.Test")), nullptr);
}

TEST_F(Windows, CanBeSubclassed)
{
    const HWND window = Create();
    SetWindowLongPtrW(window, GWLP_USERDATA, GetWindowLongPtrW(window, GWLP_WNDPROC));
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Subclass));
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 1, 1), 102);
    DestroyWindow(window);
}

TEST_F(Windows, ARefusedCreationLeavesNothing)
{
    refuseCreation = true;
    EXPECT_EQ(Create(), nullptr);
    EXPECT_TRUE(Saw(WM_NCDESTROY));
}

TEST_F(Windows, ClassesAreKnownByName)
{
    EXPECT_EQ(Create(TEXT("NoSuchClass")), nullptr);
    // Wine has the code of UnregisterClassW here too.
    EXPECT_EQ(GetLastError(),
              static_cast<DWORD>(UnderWine ? ERROR_CLASS_DOES_NOT_EXIST : ERROR_CANNOT_FIND_WND_CLASS));
    WNDCLASSW again{};
    again.lpfnWndProc = RecordingProcedure;
    again.lpszClassName = TEXT("recordingWINDOW");
    again.hInstance = GetModuleHandleW(nullptr);
    EXPECT_EQ(RegisterClassW(&again), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CLASS_ALREADY_EXISTS});
    EXPECT_FALSE(UnregisterClassW(TEXT("NoSuchClass"), GetModuleHandleW(nullptr)));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CLASS_DOES_NOT_EXIST});
    const HWND text = Create(TEXT("Static"));
    EXPECT_EQ(TextOf(text), TEXT("first"));
    DestroyWindow(text);
}

TEST_F(Windows, ChildrenEndWithTheirParent)
{
    const HWND parent = Create();
    const HWND child = CreateWindowExW(0, TEXT("RecordingWindow"), nullptr, WS_CHILD, 0, 0, 0, 0, parent, nullptr,
                                       GetModuleHandleW(nullptr), nullptr);
    // Without a display Wine creates no child windows.
    EXPECT_TRUE(child != nullptr || UnderWine);
    DestroyWindow(parent);
    EXPECT_FALSE(IsWindow(child));
}
} // namespace
