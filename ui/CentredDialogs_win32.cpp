#include "ui/CentredDialogs.h"

#include "ui/WindowImpl_win32.h"
#include "ui/WindowPlacement_win32.h"

#include <atomic>
#include <utility>

namespace
{
// Subclasses a task dialog from its activation to its first WM_SIZE, when the dialog has its final size; it is
// centred then and no longer subclassed.
class CHookedWindow final : public CWindowImpl
{
public:
    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CHookedWindow() override = default;
    WNDPROC GetWindowProc() override;
    void OnFinalMessage(HWND window) override;
};

bool CHookedWindow::ProcessWindowMessage(HWND window, UINT message, WPARAM, LPARAM, LRESULT &)
{
    if (message == WM_SIZE && IsHookArmed())
    {
        CentreWindow(window);
        UnsubclassWindow();
        DisarmHook();
    }
    return false;
}

WNDPROC CHookedWindow::GetWindowProc()
{
    return CWindowImpl::GetWindowProc();
}

void CHookedWindow::OnFinalMessage(HWND) {}

// hookLock guards everything but armedThread; the thread that armed the hook holds it.
struct HookState
{
    HookState() { InitializeCriticalSection(&hookLock); }
    // hookLock is never deleted: a thread may still wait for it when the module is unloaded.

    CRITICAL_SECTION hookLock;
    std::atomic<DWORD> armedThread{0};
    HHOOK hookHandle = nullptr;
    HWND hookedDialog = nullptr; // the first window created since arming
    bool messageBoxMode = false;
    CHookedWindow hookedWindow;
};

HookState state;

void FollowActivation(HWND window)
{
    if (state.messageBoxMode)
    {
        if (state.hookHandle != nullptr)
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
    if (code == HCBT_CREATEWND && state.hookedDialog == nullptr)
    {
        state.hookedDialog = window;
    }
    else if (code == HCBT_ACTIVATE && window == state.hookedDialog)
    {
        FollowActivation(window);
    }
    return 0;
}

void Arm(bool messageBoxMode)
{
    // This thread may still have the hook armed for an earlier dialog that was never centred.
    DisarmHook();
    EnterCriticalSection(&state.hookLock);
    state.armedThread = GetCurrentThreadId();
    state.hookedDialog = nullptr;
    state.messageBoxMode = messageBoxMode;
    state.hookHandle = SetWindowsHookExW(WH_CBT, CbtProc, nullptr, GetCurrentThreadId());
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
    if (const HHOOK hook = std::exchange(state.hookHandle, nullptr))
    {
        UnhookWindowsHookEx(hook);
    }
    state.armedThread = 0;
    LeaveCriticalSection(&state.hookLock);
}

bool IsHookArmed() noexcept
{
    return state.armedThread == GetCurrentThreadId();
}

int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept
{
    ArmMessageBoxHook();
    const int result = MessageBoxW(owner, text, caption, type);
    // If the box was never shown or never activated, the hook is still armed.
    DisarmHook();
    return result;
}
