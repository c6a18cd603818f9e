// Numbers as the user's locale writes them: every number that the plug-in itself puts before a
// user goes through here.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// The conventions of one locale. Empty until it is loaded; keeps its values until a reload. No lock of its
// own.
class LocaleNumberFormat
{
public:
    explicit LocaleNumberFormat(LCID locale = LOCALE_USER_DEFAULT) noexcept : Locale(locale) {}

    bool IsLoaded() const noexcept { return !DecimalSeparator.empty(); }

    // The same as the platform's structure, which points into this record's texts.
    NUMBERFMTW PlatformForm() const noexcept;

    LCID Locale;
    UINT32 NumDigits = 0;   // decimals
    UINT32 LeadingZero = 0; // 1: "0.5", 0: ".5"
    UINT32 Grouping = 0;    // digits of a group, the last group's where they differ
    WideText DecimalSeparator;
    WideText ThousandSeparator;
    UINT32 NegativeOrder = 0; // as LOCALE_INEGNUMBER
};

// Fills the record; one that is loaded is left alone unless reload is set. False with the thread's
// last error set if the locale is unknown or a value can't be read; values read before stay.
bool LoadLocaleFormat(LocaleNumberFormat &format, bool reload);

enum NumberKind : UINT32
{
    NUMBER_SIGNED = 0,
    NUMBER_UNSIGNED = 1,
    NUMBER_DOUBLE = 2
};

union NumberValue
{
    INT64 Signed;
    UINT64 Unsigned;
    double Double;
};

constexpr INT32 LocaleDecimals = -1;

// Writes the number into text, by the locale of the record, which is loaded first if it isn't.
// Integers have no decimals; a double has as many as decimals says, 0 to 30, or the locale's own with
// LocaleDecimals. E_INVALIDARG, and text as it was, for another kind or number of decimals; on
// any other failure text is empty.
HRESULT FormatNumber(LocaleNumberFormat &format, NumberValue value, NumberKind kind, INT32 decimals,
                     WCHAR (&text)[64]);
