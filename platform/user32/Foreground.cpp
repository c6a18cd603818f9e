// The foreground window. Natively no process is ever in the foreground, so both functions fail with
// access denied, as they do on Windows for a process in the background.
#include <windows.h>

BOOL WINAPI AllowSetForegroundWindow(DWORD)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI LockSetForegroundWindow(UINT lock)
{
    SetLastError(lock == LSFW_LOCK || lock == LSFW_UNLOCK ? ERROR_ACCESS_DENIED : ERROR_INVALID_PARAMETER);
    return FALSE;
}
