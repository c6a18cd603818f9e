// The settings sheet on a screen of cells: a row of tabs, the page on top, the link to the user's photos and
// the buttons. Native builds only.
#pragma once

#include "settings/SettingsSheet.h"
#include "settings/SheetScreen_terminal.h"

#include "core/Pause.h"

// Blocks until the user has closed the sheet. It opens with the page on top that was there last, and the page
// "Photos" is loaded in any case. wait is for the pauses that let a user see what happened.
SheetOutcome RunTerminalSheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait);
