#include "publish/RetryRule.h"

#include <wincodec.h>

#include <utility>

std::optional<DWORD> RetryRule::AfterMetadataFailure() noexcept
{
    return std::exchange(m_copiesBlocks, false) ? std::optional<DWORD>(0) : std::nullopt;
}

std::optional<DWORD> RetryRule::AfterPixels(HRESULT result) noexcept
{
    if (result == WINCODEC_ERR_BADIMAGE && m_retriesLeft != 0)
    {
        --m_retriesLeft;
        return 100 * (MostRetries - m_retriesLeft);
    }
    m_retriesLeft = MostRetries;
    return result == WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE ? AfterMetadataFailure() : std::nullopt;
}
