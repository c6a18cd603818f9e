// Comparison of texts by the rules of a language, over ICU's collation.
// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <windows.h>
#include <oleauto.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{
struct CollatorCloser
{
    void operator()(UCollator *collator) const { ucol_close(collator); }
};
using CollatorOwner = std::unique_ptr<UCollator, CollatorCloser>;

const char *LocaleName(LCID locale)
{
    // 0x400 and 0x800, the user's and the system's default, are the environment's locale.
    thread_local char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    if (LANGIDFROMLCID(locale) != LOCALE_USER_DEFAULT && LANGIDFROMLCID(locale) != LOCALE_SYSTEM_DEFAULT)
    {
        const int length = uloc_getLocaleForLCID(locale, name, sizeof(name), &status);
        if (U_SUCCESS(status) && length > 0)
        {
            return name;
        }
    }
    // The C locale would compare code points; Windows always compares by a language.
    const char *environment = uloc_getDefault();
    return std::strstr(environment, "POSIX") ? "en_US" : environment;
}

CollatorOwner OpenCollator(LCID locale, ULONG flags)
{
    UErrorCode status = U_ZERO_ERROR;
    CollatorOwner collator(ucol_open(LocaleName(locale), &status));
    if (U_FAILURE(status))
    {
        return nullptr;
    }
    if (flags & NORM_IGNORENONSPACE)
    {
        ucol_setStrength(collator.get(), UCOL_PRIMARY);
        ucol_setAttribute(collator.get(), UCOL_CASE_LEVEL, flags & NORM_IGNORECASE ? UCOL_OFF : UCOL_ON, &status);
    }
    else if (flags & NORM_IGNORECASE)
    {
        ucol_setStrength(collator.get(), UCOL_SECONDARY);
    }
    if (flags & NORM_IGNORESYMBOLS)
    {
        ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    }
    return collator;
}

int CompareBytes(BSTR left, BSTR right)
{
    const UINT leftLength = SysStringByteLen(left);
    const UINT rightLength = SysStringByteLen(right);
    const int order = std::memcmp(left, right, std::min(leftLength, rightLength));
    return order != 0 ? order : leftLength < rightLength ? -1 : leftLength > rightLength;
}
} // namespace

HRESULT WINAPI VarBstrCmp(BSTR left, BSTR right, LCID locale, ULONG flags)
{
    const bool leftEmpty = SysStringLen(left) == 0;
    const bool rightEmpty = SysStringLen(right) == 0;
    if (leftEmpty || rightEmpty)
    {
        return leftEmpty && rightEmpty ? VARCMP_EQ : leftEmpty ? VARCMP_LT : VARCMP_GT;
    }
    int order = CompareBytes(left, right);
    if (order != 0 && locale != 0)
    {
        if (const CollatorOwner collator = OpenCollator(locale, flags))
        {
            order = ucol_strcoll(collator.get(), left, static_cast<int32_t>(SysStringLen(left)), right,
                                 static_cast<int32_t>(SysStringLen(right)));
        }
    }
    return order < 0 ? VARCMP_LT : order > 0 ? VARCMP_GT : VARCMP_EQ;
}
