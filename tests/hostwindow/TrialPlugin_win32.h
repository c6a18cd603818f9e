// A plug-in that a test leads from another program: in its run it stays at each picture until the test lets
// it go on. It is authorized by its verb "authorize", and finds fault with every picture whose name has "bad"
// in it.
#pragma once

#include <windows.h>

inline constexpr CLSID CLSID_TRIAL_PLUGIN = {
    0x6D3F0C51, 0x2B8E, 0x4C77, {0x9A, 0x41, 0x0E, 0x5D, 0xC8, 0x13, 0x7F, 0xA2}};
inline constexpr wchar_t TrialPluginText[] = L"{6D3F0C51-2B8E-4C77-9A41-0E5DC8137FA2}";

// Each time it is set, one picture comes to its end.
inline constexpr wchar_t NextPicture[] = L"HalvoraTrialNextPicture";
