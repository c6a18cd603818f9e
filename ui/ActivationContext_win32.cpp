#include "ui/ActivationContext_win32.h"

#include "core/ThisModule.h"
#include "resources/resource.h"

ActivationContext::ActivationContext() noexcept
{
    ACTCTXW description{sizeof(description)};
    description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.hModule = ThisModule();
    description.lpResourceName = MAKEINTRESOURCEW(IDR_COMMON_CONTROLS_6);
    m_context = CreateActCtxW(&description);
    m_isActive = m_context != INVALID_HANDLE_VALUE && ActivateActCtx(m_context, &m_cookie);
}

ActivationContext::~ActivationContext()
{
    if (m_isActive)
    {
        DeactivateActCtx(0, m_cookie);
    }
    if (m_context != INVALID_HANDLE_VALUE)
    {
        ReleaseActCtx(m_context);
    }
}
