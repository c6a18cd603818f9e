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
    WideText name;
    WNDPROC procedure = nullptr;
    int extraBytes = 0;
};

struct Window
{
    HWND handle = nullptr;
    WNDPROC procedure = nullptr;
    LONG_PTR userData = 0;
    // The class's extra window memory (cbWndExtra), by byte offset.
    std::vector<BYTE> extra;
};

class WindowStore
{
public:
    static WindowStore &Instance();

    // Hold this lock to read or write anything of a window or a class. It is never held while a procedure
    // runs.
    std::mutex &Lock() { return m_lock; }

    // Call these under the lock. Names are compared without regard to case.
    const WindowClass *FindClass(const WCHAR *name) const;
    void AddClass(WindowClass added);

    Window &AddWindow(const WindowClass &windowClass);
    // Sets the last error and returns null if there is no such window.
    Window *FindWindow(HWND handle);
    void RemoveWindow(HWND handle);

private:
    WindowStore();

    std::mutex m_lock;
    std::vector<WindowClass> m_classes;
    std::vector<std::unique_ptr<Window>> m_windows;
    ULONG_PTR m_lastHandle = 0x10000;
};
