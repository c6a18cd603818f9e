// The settings sheet on a terminal: a row of tabs, the page on top, the link to the user's photos and the
// buttons. Native build only.
#pragma once

#include "settings/SettingsSheet.h"
#include "settings/SheetScreen_terminal.h"

#include "core/Pause.h"

// Blocks until the user has closed the sheet. It opens on the page that was on top when the last sheet closed,
// and always loads the page "Photos". wait makes the pauses that let a user see what happened.
SheetOutcome RunTerminalSheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait);
