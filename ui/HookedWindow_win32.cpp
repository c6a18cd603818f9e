#include "ui/HookedWindow_win32.h"

#include "ui/DialogHook.h"
#include "ui/WindowPlacement.h"

bool CHookedWindow::ProcessWindowMessage(HWND window, UINT message, WPARAM, LPARAM, LRESULT &)
{
    if (message == WM_SIZE && IsHookArmed())
    {
        CentreWindow(window);
        UnsubclassWindow();
        DisarmHook();
    }
    return false;
}

WNDPROC CHookedWindow::GetWindowProc()
{
    return CWindowImpl::GetWindowProc();
}

void CHookedWindow::OnFinalMessage(HWND) {}
