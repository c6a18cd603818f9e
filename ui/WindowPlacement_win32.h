// Placement of windows. Nothing here reports failures: a window that can't be placed stays where it is.
#pragma once

#include <windows.h>

// Centres a child on its parent's client area, and any other window on its owner, if that is visible and not
// minimized, or else on the work area of the nearest monitor. The window stays within the parent or the
// monitor's work area.
void CentreWindow(HWND window) noexcept;

// Puts the middle of the window's visible frame under the mouse pointer, within the work area of the
// monitor there.
void CentreOnPointer(HWND window) noexcept;

// Shifts a child by dx and dy, in 1/96 inch of the parent's device, and enlarges it by dw and dh
// pixels. Not repainted.
void MoveChildBy(HWND parent, HWND child, INT32 dx, INT32 dy, INT32 dw, INT32 dh) noexcept;

// The system is asked once; later calls return the same.
bool IsVistaOrLater() noexcept;
