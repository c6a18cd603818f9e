// Subclasses a task dialog from its activation to its first WM_SIZE, when the dialog has its final size; it is
// centred then and no longer subclassed.
#pragma once

#include "ui/WindowImpl.h"

class CHookedWindow final : public CWindowImpl
{
public:
    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CHookedWindow() override = default;
    WNDPROC GetWindowProc() override;
    void OnFinalMessage(HWND window) override;
};
