#include "ui/CentredDialogs.h"

int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept
{
    return MessageBoxW(owner, text, caption, type);
}

void ArmTaskDialogHook() noexcept {}

void DisarmHook() noexcept {}
