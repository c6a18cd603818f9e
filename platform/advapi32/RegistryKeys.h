// Open keys: the path that a handle stands for. Which rights a key was opened with isn't looked at.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// Sets path, below HKEY_CURRENT_USER, for a key and a subkey of it (may be null). ERROR_INVALID_HANDLE;
// ERROR_FILE_NOT_FOUND below the other predefined keys, which are empty natively.
LSTATUS LocateKey(HKEY key, LPCWSTR subkey, WideText &path);

// Calls body and returns its result; no exception may leave a function of the API.
template <class Body>
LSTATUS WithoutExceptions(Body &&body) noexcept
{
    try
    {
        return body();
    }
    catch (...)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}
