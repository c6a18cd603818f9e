// The foreground window. Natively a process has none, and none to give away: as on Windows for a
// process that isn't in the foreground, both functions say that access is denied.
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
