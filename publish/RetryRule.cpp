#include "publish/RetryRule.h"

#include <wincodec.h>

#include <utility>

// The blocks of a source may be such that no writer of metadata, or no encoder, copes with them. The
// picture then goes without them; a failure that remains has other causes.
std::optional<DWORD> RetryRule::AfterMetadataFailure() noexcept
{
    return std::exchange(m_copiesBlocks, false) ? std::optional<DWORD>(0) : std::nullopt;
}

// A picture reads as a bad one while another program is still at its file; that passes.
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
