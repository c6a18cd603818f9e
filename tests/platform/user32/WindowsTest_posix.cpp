// Windows that are never drawn.
#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

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
    static void SetUpTestSuite()
    {
        WNDCLASSEXW description{sizeof(description)};
        description.lpfnWndProc = RecordingProcedure;
        description.cbWndExtra = 2 * sizeof(void *);
        description.lpszClassName = u"RecordingWindow";
        ASSERT_NE(RegisterClassExW(&description), 0);
        EXPECT_EQ(RegisterClassExW(&description), 0);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_CLASS_ALREADY_EXISTS});
    }

    void SetUp() override
    {
        received.clear();
        refuseCreation = false;
    }

    static HWND Create(const WCHAR *name = u"RECORDINGwindow")
    {
        return CreateWindowExW(0, name, u"text", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    }
};

TEST_F(Windows, LiveFromCreationToDestruction)
{
    const HWND window = Create();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 7, 3), 703);
    EXPECT_TRUE(SetWindowTextW(window, u"another"));
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_EQ(received,
              (std::vector<UINT>{WM_NCCREATE, WM_CREATE, WM_USER + 1, WM_SETTEXT, WM_DESTROY, WM_NCDESTROY}));
    EXPECT_FALSE(IsWindow(window));
    SetLastError(0);
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 1, 1), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
    EXPECT_FALSE(DestroyWindow(window));
    EXPECT_EQ(Create(u"NoSuchClass"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CANNOT_FIND_WND_CLASS});
}

TEST_F(Windows, KeepWordsOfTheirUsersAndCanBeSubclassed)
{
    const HWND window = Create();
    EXPECT_EQ(SetWindowLongPtrW(window, sizeof(void *), 44), 0);
    EXPECT_EQ(GetWindowLongPtrW(window, sizeof(void *)), 44);
    EXPECT_EQ(GetWindowLongPtrW(window, 0), 0);
    SetLastError(0);
    EXPECT_EQ(GetWindowLongPtrW(window, 2 * sizeof(void *)), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_INDEX});
    EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, GetWindowLongPtrW(window, GWLP_WNDPROC)), 0);
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Subclass));
    EXPECT_EQ(SendMessageW(window, WM_USER + 1, 1, 1), 102);
    DestroyWindow(window);
}

TEST_F(Windows, ARefusedCreationLeavesNothing)
{
    refuseCreation = true;
    EXPECT_EQ(Create(), nullptr);
    EXPECT_EQ(received.back(), UINT{WM_NCDESTROY});
}
} // namespace
