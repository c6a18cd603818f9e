#include "ui/DialogHook.h"

#include "ui/HookedWindow_win32.h"
#include "ui/WindowPlacement.h"

#include <atomic>
#include <utility>

namespace
{
// All of it but the thread is guarded by the lock, which the armed thread holds.
struct HookState
{
    HookState() { InitializeCriticalSection(&lock); }
    // Never deleted: a thread may still wait for it when the module goes.

    CRITICAL_SECTION lock;
    std::atomic<DWORD> armedThread{0};
    HHOOK hook = nullptr;
    HWND dialog = nullptr; // the first window created since arming
    bool messageBoxMode = false;
    CHookedWindow hookedWindow;
};

HookState state;

void FollowActivation(HWND window)
{
    if (state.messageBoxMode)
    {
        if (state.hook != nullptr)
        {
            CentreWindow(window);
            DisarmHook();
        }
    }
    else if (state.hookedWindow.Window() == nullptr)
    {
        state.hookedWindow.SubclassWindow(window);
    }
}

LRESULT CALLBACK CbtProc(int code, WPARAM wParam, LPARAM lParam)
{
    if (code < 0)
    {
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
    const auto window = reinterpret_cast<HWND>(wParam);
    if (code == HCBT_CREATEWND && state.dialog == nullptr)
    {
        state.dialog = window;
    }
    else if (code == HCBT_ACTIVATE && window == state.dialog)
    {
        FollowActivation(window);
    }
    return 0;
}

void Arm(bool messageBoxMode)
{
    // This thread may still have the hook armed for an earlier dialog that was never centred.
    DisarmHook();
    EnterCriticalSection(&state.lock);
    state.armedThread = GetCurrentThreadId();
    state.dialog = nullptr;
    state.messageBoxMode = messageBoxMode;
    state.hook = SetWindowsHookExW(WH_CBT, CbtProc, nullptr, GetCurrentThreadId());
}
} // namespace

void ArmMessageBoxHook() noexcept
{
    Arm(true);
}

void ArmTaskDialogHook() noexcept
{
    Arm(false);
}

void DisarmHook() noexcept
{
    if (!IsHookArmed())
    {
        return;
    }
    state.hookedWindow.UnsubclassWindow();
    if (const HHOOK hook = std::exchange(state.hook, nullptr))
    {
        UnhookWindowsHookEx(hook);
    }
    state.armedThread = 0;
    LeaveCriticalSection(&state.lock);
}

bool IsHookArmed() noexcept
{
    return state.armedThread == GetCurrentThreadId();
}
