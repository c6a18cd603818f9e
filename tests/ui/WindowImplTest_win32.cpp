#include "ui/WindowImpl_win32.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{
using testing::ElementsAre;

std::vector<UINT> reachedTheWindow;

LRESULT CALLBACK OwnProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= WM_USER || message == WM_NCDESTROY)
    {
        reachedTheWindow.push_back(message);
    }
    return message >= WM_USER ? 1000 : DefWindowProcW(window, message, wParam, lParam);
}

// Answers one message, detaches at another, and keeps the last call.
class Watcher final : public CWindowImpl
{
public:
    static constexpr UINT Answered = WM_USER + 1;
    static constexpr UINT Detaching = WM_USER + 2;

    bool ProcessWindowMessage(HWND, UINT message, WPARAM, LPARAM, LRESULT &result) override
    {
        if (message == Detaching)
        {
            UnsubclassWindow();
        }
        result = 7;
        return message == Answered;
    }
    void OnFinalMessage(HWND window) override { last = window; }

    HWND last = nullptr;
};

class SubclassedWindows : public testing::Test
{
protected:
    void SetUp() override
    {
        m_window =
            CreateWindowExW(0, TEXT("Static"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_NE(m_window, nullptr);
        SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OwnProcedure));
        reachedTheWindow.clear();
    }
    void TearDown() override { DestroyWindow(m_window); }

    LONG_PTR Procedure() const { return GetWindowLongPtrW(m_window, GWLP_WNDPROC); }
    LRESULT Send(UINT message) const { return SendMessageW(m_window, message, 0, 0); }

    HWND m_window = nullptr;
};

TEST_F(SubclassedWindows, GetWhatTheSubclassLeaves)
{
    Watcher watcher;
    ASSERT_TRUE(watcher.SubclassWindow(m_window));
    EXPECT_EQ(watcher.Window(), m_window);
    EXPECT_FALSE(watcher.SubclassWindow(m_window));
    EXPECT_EQ(Send(Watcher::Answered), 7);
    EXPECT_EQ(Send(WM_USER + 5), 1000);
    EXPECT_THAT(reachedTheWindow, ElementsAre(WM_USER + 5));
    watcher.UnsubclassWindow();
    EXPECT_EQ(Procedure(), reinterpret_cast<LONG_PTR>(&OwnProcedure));
    EXPECT_EQ(Send(Watcher::Answered), 1000);
}

TEST_F(SubclassedWindows, DoNotGetTheMessageAtWhichTheyAreLetGo)
{
    Watcher watcher;
    ASSERT_TRUE(watcher.SubclassWindow(m_window));
    EXPECT_EQ(Send(Watcher::Detaching), 0);
    EXPECT_EQ(watcher.Window(), nullptr);
    EXPECT_EQ(Send(Watcher::Detaching), 1000);
    EXPECT_THAT(reachedTheWindow, ElementsAre(Watcher::Detaching));
}

TEST_F(SubclassedWindows, AreLetGoWhenTheyEnd)
{
    Watcher watcher;
    ASSERT_TRUE(watcher.SubclassWindow(m_window));
    EXPECT_TRUE(DestroyWindow(m_window));
    EXPECT_THAT(reachedTheWindow, ElementsAre(WM_NCDESTROY));
    EXPECT_EQ(watcher.last, m_window);
    EXPECT_EQ(watcher.Window(), nullptr);
}

TEST_F(SubclassedWindows, AreLetGoWithTheObject)
{
    {
        Watcher watcher;
        ASSERT_TRUE(watcher.SubclassWindow(m_window));
    }
    EXPECT_EQ(Procedure(), reinterpret_cast<LONG_PTR>(&OwnProcedure));
    Watcher next;
    EXPECT_TRUE(next.SubclassWindow(m_window));
}

// Another subclass over ours calls the procedure that it replaced.
WNDPROC below = nullptr;

LRESULT CALLBACK Over(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallWindowProcW(below, window, message, wParam, lParam);
}

TEST_F(SubclassedWindows, KeepASubclassThatCameLater)
{
    Watcher watcher;
    ASSERT_TRUE(watcher.SubclassWindow(m_window));
    below =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Over)));
    watcher.UnsubclassWindow();
    EXPECT_EQ(Procedure(), reinterpret_cast<LONG_PTR>(&Over));
    EXPECT_EQ(Send(Watcher::Answered), 1000);
    EXPECT_THAT(reachedTheWindow, ElementsAre(Watcher::Answered));
}

TEST_F(SubclassedWindows, MustBeWindows)
{
    Watcher watcher;
    EXPECT_FALSE(watcher.SubclassWindow(nullptr));
    DestroyWindow(m_window);
    EXPECT_FALSE(watcher.SubclassWindow(m_window));
    EXPECT_EQ(watcher.Window(), nullptr);
}
} // namespace
