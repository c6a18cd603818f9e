// Marks known gaps of Wine. Where Wine doesn't do what Windows documents, a test expects what Wine does,
// so that it fails when the gap closes.
#pragma once

#include <windows.h>

#include <type_traits>

constexpr bool UnderWine = std::is_same_v<WCHAR, wchar_t>;
