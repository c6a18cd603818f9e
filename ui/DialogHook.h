// Centres a message box or task dialog on its owner. The platform shows these by one blocking call that takes
// no position, so a hook for the calling thread is installed just before that call; it sees the dialog being
// created and activated, and moves it. One dialog of the process is hooked at a time: arming waits until
// another thread's dialog has been centred. In the native build these functions do nothing.
#pragma once

#include <windows.h>

// Arm the hook for the next message box, or task dialog, of the calling thread.
void ArmMessageBoxHook() noexcept;
void ArmTaskDialogHook() noexcept;

// Removes the calling thread's hook, if it has one, and lets other threads arm theirs. Must be called after the
// blocking call has returned, whether or not the dialog was shown.
void DisarmHook() noexcept;

// Whether the calling thread has armed the hook and the dialog isn't centred yet.
bool IsHookArmed() noexcept;
