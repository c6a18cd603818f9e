#include "tests/ui/DialogDriver_win32.h"

#include "ui/CentredDialogs.h"

// Not a detached std::thread: one that starts while another ends was seen to vanish before it ran (winpthreads).
bool AnotherThreadCanHook()
{
    constexpr DWORD Patience = 60000; // ms
    const auto armAndDisarm = [](LPVOID) -> DWORD {
        ArmTaskDialogHook();
        DisarmHook();
        return 0;
    };
    const HANDLE thread = CreateThread(nullptr, 0, armAndDisarm, nullptr, 0, nullptr);
    const bool ended = WaitForSingleObject(thread, Patience) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return ended;
}
