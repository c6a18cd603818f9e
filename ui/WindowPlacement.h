// Moving windows to where they belong. Nothing here fails: a window that can't be placed stays where
// it is. Windows natively have no place, and stay where they are too.
#pragma once

#include <windows.h>

// Puts a child in the middle of its parent's client area, any other window in the middle of its
// owner if that is visible and not minimized, and else of the work area of the nearest monitor.
// The window stays within the parent or the monitor's work area.
void CentreWindow(HWND window) noexcept;

// Puts the middle of the window's visible frame under the mouse pointer, within the work area of the
// monitor there.
void CentreOnPointer(HWND window) noexcept;

// Shifts a child by dx and dy, in 1/96 inch of the parent's device, and enlarges it by dw and dh
// pixels. Not repainted.
void MoveChildBy(HWND parent, HWND child, INT32 dx, INT32 dy, INT32 dw, INT32 dh) noexcept;

// Asked of the system once.
bool IsVistaOrLater() noexcept;
