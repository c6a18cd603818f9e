// The common controls of version 6 for the windows that a thread makes, whatever version the program
// around the module uses. Windows only.
#pragma once

#include <windows.h>

class ActivationContext
{
public:
    // Activates the manifest that lies in the module under IDR_COMMON_CONTROLS_6, on the calling thread.
    // Where that fails, the program's own controls are used.
    ActivationContext() noexcept;

    // On the same thread; contexts end in the reverse order of their beginning.
    ~ActivationContext();
    ActivationContext(const ActivationContext &) = delete;
    ActivationContext &operator=(const ActivationContext &) = delete;

private:
    HANDLE m_context;
    ULONG_PTR m_cookie = 0;
    bool m_isActive = false;
};
