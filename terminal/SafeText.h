// Makes untrusted text safe to show on one line of a terminal or a window: the one rule for it. Both builds.
#pragma once

#include "com/WideText.h"

// Line breaks and tabs become blanks, carriage returns are dropped, and other control characters
// show in caret notation ("^["). C1 controls, direction overrides and lone surrogates become U+FFFD.
WideText SafeText(WideView text);
