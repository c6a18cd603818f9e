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

// The names of defaults stand for the locale that they are at this moment.
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
