// Gives the windows that a thread creates the common controls of version 6, whatever version the program that
// loaded the module uses. Windows build only.
#pragma once

#include <windows.h>

class ActivationContext
{
public:
    // Activates the module's manifest IDR_COMMON_CONTROLS_6 on the calling thread. If that fails, the program's
    // own version is used.
    ActivationContext() noexcept;

    // Must run on the same thread, in the reverse order of construction.
    ~ActivationContext();
    ActivationContext(const ActivationContext &) = delete;
    ActivationContext &operator=(const ActivationContext &) = delete;

private:
    HANDLE m_context;
    ULONG_PTR m_cookie = 0;
    bool m_isActive = false;
};
