// The settings sheet's layout: what it changes of the platform's own, and where it puts its additions.
// Windows only.
#pragma once

#include <windows.h>

HWND TabControlOf(HWND sheet) noexcept;

// Moves tab control, page and buttons and enlarges the sheet, if the sheet has the platform's standard
// layout; a sheet that the platform lays out in another way is left alone.
void TightenLayout(HWND sheet) noexcept;

// Puts a child of the tab control at the right end of the tab row.
void PlaceInTabRow(HWND sheet, HWND child) noexcept;

// Gives a link its ideal size, and its place left of the OK button and ahead of it in the tab order.
void PlaceBesideButtons(HWND sheet, HWND link) noexcept;
