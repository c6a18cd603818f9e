// The locale of a thread; until it is set, the user's.
#include "platform/kernel32/LocaleInformation.h"

namespace
{
thread_local LCID chosenLocale = 0;
} // namespace

LCID WINAPI GetThreadLocale()
{
    return chosenLocale != 0 ? chosenLocale : GetUserDefaultLCID();
}

// A LOCALE_*_DEFAULT identifier is resolved now, so a later change of the default doesn't count.
BOOL WINAPI SetThreadLocale(LCID locale)
{
    const auto conventions = ConventionsOfLocale(locale);
    if (!conventions)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const bool isDefault =
        locale == LOCALE_NEUTRAL || locale == LOCALE_USER_DEFAULT || locale == LOCALE_SYSTEM_DEFAULT;
    chosenLocale = isDefault ? conventions->windowsId : locale;
    return TRUE;
}
