#include "settings/SettingsSheet.h"

#include "settings/TerminalSheet_terminal.h"

SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account)
{
    const auto screen = OpenTerminalScreen();
    return screen ? RunTerminalSheet(*screen, parent, account, SystemPause) : SheetOutcome{};
}
