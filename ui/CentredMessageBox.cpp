#include "ui/CentredMessageBox.h"

#include "ui/DialogHook.h"

int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept
{
    ArmMessageBoxHook();
    const int result = MessageBoxW(owner, text, caption, type);
    // If the box was never shown or never activated, the hook is still armed.
    DisarmHook();
    return result;
}
