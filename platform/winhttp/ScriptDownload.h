// Fetching a proxy script.
#pragma once

#include <windows.h>

#include <chrono>
#include <string>

struct ScriptFetch
{
    DWORD error = 0; // 0 or a code of WinHTTP
    std::string script;
};

// Straight, without a proxy. ERROR_WINHTTP_UNRECOGNIZED_SCHEME for an address that is neither http nor
// https, ERROR_WINHTTP_LOGIN_FAILURE where the server asks who is there,
// ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT for any other failure, a script of more than 1 MB, and one that
// isn't there whole within the limit. Blocks for as long; any thread.
ScriptFetch DownloadScript(const std::string &url, std::chrono::milliseconds limit);
