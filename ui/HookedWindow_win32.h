// The subclass of a task dialog between its activation and its first size message, at which it is
// centred and let go.
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
