// The busy indicator: a small child window that shows frames of the strip in bitmap 216 over whatever its
// parent paints. The strip is a row of square frames. Windows only; all on the window's own thread.
#pragma once

#include "com/HandleOwner.h"
#include "ui/WaitingAnimation.h"
#include "ui/WindowImpl.h"

class CWaitingAnimationImpl : public CWindowImpl
{
public:
    using TickCounter = DWORD(WINAPI *)();

    explicit CWaitingAnimationImpl(TickCounter ticks = GetTickCount) noexcept : m_ticks(ticks) {}

    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CWaitingAnimationImpl() override = default;

    // Creates the window, which gives itself the size of one frame and shows the first; null if it can't be.
    // Without its bitmap it has no size.
    HWND Create(HWND parent) noexcept;

    // Frames advance from the first on. Without a window, or twice, nothing.
    void Start() noexcept;

    // Back to the first frame, at once.
    void Stop() noexcept;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void LoadStrip(HWND window) noexcept;
    void Paint(HWND window, HDC given) noexcept;
    void Draw(HWND window, HDC context) noexcept;

    BitmapOwner m_bitmap;
    BITMAP m_bitmapInfo{};
    WaitingAnimation m_animation;
    TickCounter m_ticks;
};

class CWaitingAnimationCtrl final : public CWaitingAnimationImpl
{
public:
    using CWaitingAnimationImpl::CWaitingAnimationImpl;
};
