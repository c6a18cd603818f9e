// The waiting animation: a small child window that blends a frame of bitmap 216, a row of square frames, over
// its parent's background. Windows build only; all calls on the window's thread.
#pragma once

#include "com/HandleOwner.h"
#include "ui/WaitingAnimation.h"
#include "ui/WindowImpl_win32.h"

class CWaitingAnimationImpl : public CWindowImpl
{
public:
    using TickCounter = DWORD(WINAPI *)();

    explicit CWaitingAnimationImpl(TickCounter ticks = GetTickCount) noexcept : m_ticks(ticks) {}

    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CWaitingAnimationImpl() override = default;

    // Creates the window, which takes the size of one frame and shows the first; null on failure. Without its
    // bitmap the window has no size.
    HWND Create(HWND parent) noexcept;

    // Lets the frames advance from the first on. Does nothing without a window or while running.
    void Start() noexcept;

    // Paints the first frame before returning.
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
