// Centres a message box or task dialog on its owner. The platform shows these by one blocking call that takes
// no position, so a hook for the calling thread is installed just before that call; it sees the dialog being
// created and activated, and moves it. One dialog of the process is hooked at a time: arming waits until
// another thread's dialog has been centred. Natively a dialog is text in the terminal, and nothing is to be centred.
#pragma once

#include <windows.h>

// MessageBoxW with its four arguments and its result, centred. Blocks until the user has answered.
int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept;

// Arms the hook for the next task dialog of the calling thread.
void ArmTaskDialogHook() noexcept;

// Removes the calling thread's hook, if it has one, and lets other threads arm theirs. Must be called after the
// blocking call has returned, whether or not the dialog was shown.
void DisarmHook() noexcept;

// Of the Windows build alone: arms the hook for the next message box of the calling thread, and tells whether the
// calling thread has armed it and the dialog isn't centred yet.
void ArmMessageBoxHook() noexcept;
bool IsHookArmed() noexcept;
