// Cutting texts: lists with a separator, and white space at the ends.
#pragma once

#include "com/AsciiText.h"
#include "com/WideText.h"

#include <vector>

// Unicode's White_Space property, independent of the C library's locale.
bool IsWhiteSpace(WCHAR unit) noexcept;

// The pieces between separators; runs of separators and separators at the ends give no piece. The
// views point into text.
std::vector<WideView> SplitText(WideView text, WCHAR separator);

// The text without white space at its ends; a view into it.
WideView StripWhiteSpace(WideView text) noexcept;

// The digits at the start of the text, INT_MAX at most: "3;2;0" is 3. Without a digit 0.
int LeadingNumber(WideView text) noexcept;

// Puts the first character into upper case by the rules of the user's language.
void CapitalizeFirst(WideText &text);
