// Cutting texts: lists with a separator, and white space at the ends.
#pragma once

#include "com/WideText.h"

#include <vector>

// Unicode's White_Space property, whatever the C library's locale says of it.
bool IsWhiteSpace(WCHAR unit) noexcept;

// The pieces between separators; runs of separators and separators at the ends give no piece. The
// views point into text.
std::vector<WideView> SplitText(WideView text, WCHAR separator);

// Without white space at both ends.
WideView StripWhiteSpace(WideView text) noexcept;

// Whether both are alike but for the case of A to Z: for words of a format, whatever the locale.
bool EqualsIgnoringCase(WideView left, WideView right) noexcept;

// The first character in upper case, as the user's language has it; an empty text stays empty.
void CapitalizeFirst(WideText &text);
