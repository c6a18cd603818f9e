// The text type of the whole module: UTF-16 in the platform's own character type.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;
