#include "settings/SettingsSheet.h"

SheetOutcome ShowSettingsSheet(HWND, SheetAccount &)
{
    return {};
}
