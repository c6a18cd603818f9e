#include "ui/DialogHook.h"

void ArmMessageBoxHook() noexcept {}

void ArmTaskDialogHook() noexcept {}

void DisarmHook() noexcept {}

bool IsHookArmed() noexcept
{
    return false;
}
