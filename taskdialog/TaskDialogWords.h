// The words of a task dialog document and the constants that they stand for. All are compared exactly.
#pragma once

#include "com/WideText.h"

#include <windows.h>
#include <commctrl.h>

// TD_INFORMATION_ICON and the like; null for a word that names no icon.
const WCHAR *IconOfWord(WideView word) noexcept;

// A bit of dwCommonButtons; 0 for a word that names no common button.
int CommonButtonOfWord(WideView word) noexcept;

// The identifier of the common button with that name; 0 for a word that names none.
int ButtonIdOfWord(WideView word) noexcept;

// A bit of dwFlags; 0 for a word that names no flag.
int FlagOfWord(WideView word) noexcept;
