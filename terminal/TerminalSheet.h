// The settings sheet on a terminal: a row of tabs, the page on top, the link to the user's photos and the
// buttons.
#pragma once

#include "core/Pause.h"
#include "settings/SettingsSheet.h"
#include "terminal/SheetScreen.h"

// Blocks until the user has closed the sheet. It opens on the page that was on top when the last sheet closed,
// and always loads the page "Photos". wait makes the pauses that let a user see what happened.
SheetOutcome RunTerminalSheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait);
