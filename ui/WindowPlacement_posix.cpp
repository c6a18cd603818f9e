// Natively a dialog is text in the terminal: there is no window to move.
#include "ui/WindowPlacement.h"

void CentreWindow(HWND) noexcept {}

void CentreOnPointer(HWND) noexcept {}

void MoveChildBy(HWND, HWND, INT32, INT32, INT32, INT32) noexcept {}

bool IsVistaOrLater() noexcept
{
    return true;
}
