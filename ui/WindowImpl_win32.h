// Subclasses a window by an object: the window's messages reach a virtual operation first. All calls on the
// window's thread.
#pragma once

#include <windows.h>

class CWindowImpl
{
public:
    // The style for windows created by derived classes.
    static constexpr DWORD Styles = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;

    CWindowImpl() noexcept = default;
    CWindowImpl(const CWindowImpl &) = delete;
    CWindowImpl &operator=(const CWindowImpl &) = delete;

    // Returns true if it has handled the message and set result; otherwise the replaced procedure gets the
    // message.
    virtual bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      LRESULT &result) = 0;
    virtual ~CWindowImpl();
    // The procedure that SubclassWindow gives to the window.
    virtual WNDPROC GetWindowProc();
    // Called last when an attached window is destroyed; it is detached by then.
    virtual void OnFinalMessage(HWND window);

    HWND Window() const noexcept { return m_window; }

    // Attaches a window. Returns false, and changes nothing, on failure or if one is attached already.
    bool SubclassWindow(HWND window) noexcept;

    // Detaches the window, if there is one, and restores its earlier procedure if ours is still on top. Below
    // another subclass ours stays in the chain and passes every message on.
    void UnsubclassWindow() noexcept;

    // Calls the replaced procedure, or DefWindowProcW if no window is attached.
    LRESULT PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static LRESULT CALLBACK Route(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT EndOf(HWND window, bool handled, LRESULT result, WPARAM wParam, LPARAM lParam);

    HWND m_window = nullptr;
    WNDPROC m_replaced = DefWindowProcW;
};
