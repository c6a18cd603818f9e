// What a test runs on, for the marks of known gaps: where Wine doesn't do what Windows
// documents, a test asserts what Wine does, so that it fails when the gap closes.
#pragma once

#include <windows.h>

#include <type_traits>

constexpr bool UnderWine = std::is_same_v<WCHAR, wchar_t>;
