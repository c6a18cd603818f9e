#include "publish/RetryRule.h"

#include <wincodec.h>

std::optional<DWORD> RetryRule::AfterMetadataFailure() noexcept
{
    if (!m_isIntact || BlocksDropped)
    {
        return std::nullopt;
    }
    BlocksDropped = true;
    return 0;
}

std::optional<DWORD> RetryRule::AfterPixels(HRESULT result) noexcept
{
    if (result == WINCODEC_ERR_BADIMAGE && RetriesLeft != 0)
    {
        --RetriesLeft;
        return 100 * (MostRetries - RetriesLeft);
    }
    RetriesLeft = MostRetries;
    return result == WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE ? AfterMetadataFailure() : std::nullopt;
}
