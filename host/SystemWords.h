// The system's words for a code.
#pragma once

#include <windows.h>

#include <string>

// "0x80004005"
std::string CodeText(HRESULT code);

// UTF-8 without a line break; the code itself where the system has no words.
std::string SystemWords(HRESULT code);

// As SystemWords, but empty where there are no words.
std::string SystemWordsOrNone(HRESULT code);
