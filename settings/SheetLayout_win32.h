// The settings sheet's layout: the changes to the platform's layout, and the places of the added controls.
// Windows build only.
#pragma once

#include <windows.h>

HWND TabControlOf(HWND sheet) noexcept;

// Moves the tab control, the page and the buttons and enlarges the sheet, if it has the platform's standard
// layout (the tab control at 4 by 4 dialog units); another layout is left alone.
void TightenLayout(HWND sheet) noexcept;

// Puts a child of the tab control at the right end of the tab row.
void PlaceInTabRow(HWND sheet, HWND child) noexcept;

// Gives a link its ideal size and puts it left of the OK button, just before it in the tab order.
void PlaceBesideButtons(HWND sheet, HWND link) noexcept;
