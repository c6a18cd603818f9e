// The windows and window classes of the process. Natively windows are never drawn: a host passes them to
// the plug-in as targets of its messages. There is no message queue; a message calls the window's
// procedure on the thread that sends it, so a procedure must guard its own data.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <memory>
#include <mutex>
#include <vector>

struct WindowClass
{
    ATOM atom = 0;
    WideText name;
    WNDPROC procedure = nullptr;
    int extraBytes = 0;
    HINSTANCE module = nullptr;
};

struct Window
{
    HWND handle = nullptr;
    std::shared_ptr<const WindowClass> windowClass;
    WNDPROC procedure = nullptr;
    WideText text;
    LONG_PTR userData = 0;
    LONG_PTR style = 0;
    LONG_PTR extendedStyle = 0;
    LONG_PTR id = 0;
    HINSTANCE module = nullptr;
    HWND parent = nullptr;
    // The class's extra window memory (cbWndExtra), by byte offset.
    std::vector<BYTE> extra;
    std::vector<std::pair<WideText, HANDLE>> properties;
};

class WindowStore
{
public:
    static WindowStore &Instance();

    // Hold this lock to read or write anything of a window or a class. It is never held while a procedure
    // runs.
    std::mutex &Lock() { return m_lock; }

    // Call these under the lock. Names are compared without regard to case; an atom may replace a name.
    std::shared_ptr<const WindowClass> FindClass(const WCHAR *nameOrAtom) const;
    ATOM AddClass(WindowClass added);
    void RemoveClass(ATOM atom);
    bool HasWindows(const WindowClass &windowClass) const;

    Window &AddWindow(const std::shared_ptr<const WindowClass> &windowClass);
    // Sets the last error and returns null if there is no such window.
    Window *FindWindow(HWND handle);
    void RemoveWindow(HWND handle);
    std::vector<HWND> ChildrenOf(HWND parent) const;

private:
    WindowStore();

    std::mutex m_lock;
    std::vector<std::shared_ptr<const WindowClass>> m_classes;
    std::vector<std::unique_ptr<Window>> m_windows;
    ATOM m_lastAtom = 0xC000;
    ULONG_PTR m_lastHandle = 0x10000;
};
