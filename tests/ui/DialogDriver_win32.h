// Drives a dialog from a thread of its own: waits until it is on the screen, inspects it and answers it. If no
// dialog appears, the test fails and any window that blocks the thread is closed.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

inline bool WaitFor(const std::function<bool()> &condition, DWORD milliseconds = 20000)
{
    for (DWORD waited = 0; waited < milliseconds; waited += 20)
    {
        if (condition())
        {
            return true;
        }
        Sleep(20);
    }
    return condition();
}

inline RECT PlaceOf(HWND window)
{
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// A visible window of the thread with that caption, but for one; null if there is none.
inline HWND FindTop(DWORD thread, const WideText &caption, HWND other = nullptr)
{
    struct Search
    {
        const WideText &caption;
        HWND other;
        HWND found = nullptr;
    } search{caption, other};
    EnumThreadWindows(
        thread,
        [](HWND window, LPARAM parameter) -> BOOL {
            auto &wanted = *reinterpret_cast<Search *>(parameter);
            WCHAR text[100] = {};
            GetWindowTextW(window, text, ARRAYSIZE(text));
            const bool isIt = window != wanted.other && IsWindowVisible(window) && text == wanted.caption;
            wanted.found = isIt ? window : nullptr;
            return !isIt;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// The texts of a window and of all windows in it, one a line.
inline WideText TextsOf(HWND window)
{
    WideText texts;
    const auto add = [](HWND part, LPARAM all) -> BOOL {
        WCHAR text[2048];
        GetWindowTextW(part, text, ARRAYSIZE(text));
        *reinterpret_cast<WideText *>(all) += WideText(text) + TEXT("\n");
        return TRUE;
    };
    add(window, reinterpret_cast<LPARAM>(&texts));
    EnumChildWindows(window, add, reinterpret_cast<LPARAM>(&texts));
    return texts;
}

// Asserts that the middle of a window lies on the middle of another; halves of a pixel are cut off.
inline void ExpectCentred(const RECT &window, const RECT &on)
{
    EXPECT_EQ(window.left, (on.left + on.right) / 2 - (window.right - window.left) / 2);
    EXPECT_EQ(window.top, (on.top + on.bottom) / 2 - (window.bottom - window.top) / 2);
}

class DialogDriver
{
public:
    // Construct it on the thread that is about to show the dialog.
    DialogDriver(const WCHAR *caption, std::function<void(HWND)> act)
        : m_caption(caption), m_act(std::move(act)), m_blocked(GetCurrentThreadId()), m_thread([this] { Drive(); })
    {
    }
    ~DialogDriver()
    {
        m_thread.join();
        EXPECT_TRUE(m_came) << "The dialog didn't come.";
    }

private:
    void Drive()
    {
        HWND dialog = nullptr;
        m_came = WaitFor([&] { return (dialog = FindTop(m_blocked, m_caption)) != nullptr; });
        if (m_came)
        {
            // A modal dialog is ready when its thread handles messages.
            SendMessageW(dialog, WM_NULL, 0, 0);
            m_act(dialog);
            m_came = WaitFor([&] { return !IsWindow(dialog); });
        }
        if (!m_came)
        {
            EnumThreadWindows(
                m_blocked,
                [](HWND window, LPARAM) -> BOOL {
                    return PostMessageW(window, WM_COMMAND, IDCANCEL, 0) && PostMessageW(window, WM_CLOSE, 0, 0);
                },
                0);
        }
    }

    WideText m_caption;
    std::function<void(HWND)> m_act;
    DWORD m_blocked;
    bool m_came = false;
    std::thread m_thread;
};

// An owner for dialogs, away from the middle of the screen.
class OwnerWindow
{
public:
    explicit OwnerWindow(RECT place = {60, 40, 701, 523})
        : m_window(CreateWindowExW(0, TEXT("Static"), TEXT("Owner"), WS_OVERLAPPEDWINDOW | WS_VISIBLE, place.left,
                                   place.top, place.right - place.left, place.bottom - place.top, nullptr, nullptr,
                                   nullptr, nullptr))
    {
        EXPECT_NE(m_window, nullptr);
    }
    ~OwnerWindow() { DestroyWindow(m_window); }
    OwnerWindow(const OwnerWindow &) = delete;
    OwnerWindow &operator=(const OwnerWindow &) = delete;

    HWND Handle() const { return m_window; }

private:
    HWND m_window;
};

// Whether another thread can arm the hook without waiting, so that none is left armed.
bool AnotherThreadCanHook();
