// The system's words for a code.
#pragma once

#include <windows.h>

#include <string>

// UTF-8 without a line break; the code itself where the system has no words.
std::string SystemWords(HRESULT code);

// As SystemWords, but empty where there are no words.
std::string SystemWordsOrNone(HRESULT code);
