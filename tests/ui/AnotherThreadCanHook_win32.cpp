#include "tests/ui/DialogDriver_win32.h"

#include "ui/DialogHook.h"

bool AnotherThreadCanHook()
{
    // Shared, since the thread may never end.
    const auto done = std::make_shared<std::promise<void>>();
    std::thread([done] {
        ArmTaskDialogHook();
        DisarmHook();
        done->set_value();
    }).detach();
    return done->get_future().wait_for(std::chrono::minutes(1)) == std::future_status::ready;
}
