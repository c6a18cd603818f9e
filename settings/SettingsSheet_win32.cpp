#include "settings/SettingsSheet.h"

#include "resources/resource.h"
#include "settings/FlickrProperties_win32.h"
#include "ui/ActivationContext_win32.h"

#include <commctrl.h>

SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account)
{
    const ActivationContext commonControls6;
    constexpr INITCOMMONCONTROLSEX classes{sizeof(classes),
                                           ICC_TAB_CLASSES | ICC_LINK_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&classes);
    CFlickrProperties sheet(account, IDS_DISPLAY_NAME);
    const bool isApplied = sheet.DoModal(parent) > 0;
    return {isApplied, isApplied && sheet.RevokeRequested()};
}
