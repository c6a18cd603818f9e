// Owner of WinHTTP's handles: sessions, connections, requests.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>
#include <winhttp.h>

struct InternetHandlePolicy
{
    using Handle = HINTERNET;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { WinHttpCloseHandle(handle); }
};
using InternetHandleOwner = HandleOwner<InternetHandlePolicy>;
