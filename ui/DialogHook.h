// The hook that centres a dialog which the platform shows by one blocking call. One dialog of the
// process at a time is hooked: arming waits until another thread's has been centred. Where dialogs
// have no place on the screen, nothing of this does anything.
#pragma once

#include <windows.h>

// For the next message box, or task dialog, of the calling thread.
void ArmMessageBoxHook() noexcept;
void ArmTaskDialogHook() noexcept;

// Removes the hook of the calling thread and lets other threads arm theirs; nothing if it has none.
// Whoever arms calls this when the blocking call has returned, whether or not the dialog came.
void DisarmHook() noexcept;

// Whether the calling thread's hook is still to do its work.
bool IsHookArmed() noexcept;
