// A window seen as an object: the messages of a window that is subclassed go through a virtual
// operation first. All on the window's own thread.
#pragma once

#include <windows.h>

class CWindowImpl
{
public:
    // The style of windows that are created through a class of this kind.
    static constexpr DWORD Styles = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;

    CWindowImpl() noexcept = default;
    CWindowImpl(const CWindowImpl &) = delete;
    CWindowImpl &operator=(const CWindowImpl &) = delete;

    // True if the message needs no more, with its result filled. Otherwise it goes on to the
    // procedure that was replaced.
    virtual bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      LRESULT &result) = 0;
    virtual ~CWindowImpl();
    // The procedure that the window gets.
    virtual WNDPROC GetWindowProc();
    // The last call for a window that ends while it is attached; it isn't any more.
    virtual void OnFinalMessage(HWND window);

    HWND Window() const noexcept { return m_window; }

    // Attaches a window; false, and nothing changed, if it can't be or another one is attached.
    bool SubclassWindow(HWND window) noexcept;

    // Detaches the window, if there is one, and puts its earlier procedure back if it has still ours.
    // Under a subclass that somebody else put over it, ours stays and passes everything on.
    void UnsubclassWindow() noexcept;

    // Hands a message to the procedure that was replaced: the platform's default one if none is.
    LRESULT PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static LRESULT CALLBACK Route(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT EndOf(HWND window, bool handled, LRESULT result, WPARAM wParam, LPARAM lParam);

    HWND m_window = nullptr;
    WNDPROC m_replaced = DefWindowProcW;
};
