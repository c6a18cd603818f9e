#include "ui/CentredMessageBox.h"

#include "ui/DialogHook.h"

int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept
{
    ArmMessageBoxHook();
    const int result = MessageBoxW(owner, text, caption, type);
    // A box that never came, or was never activated, has left the hook as it was.
    DisarmHook();
    return result;
}
