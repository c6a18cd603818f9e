// Decides after which failures a picture is prepared once more, and how.
//
// Two kinds of failure are worth another pass. A picture may read as a bad one while another program is still
// writing its file: up to three more passes, after 100, 200 and 300 milliseconds. And the metadata blocks of
// the source may be such that no writer of metadata, or no encoder, can handle them: one more pass at once,
// without copying them. Every other failure is final.
#pragma once

#include <windows.h>
#include <wincodec.h>

#include <optional>

class RetryRule
{
public:
    // isIntact: the passes copy the source's metadata blocks, as long as BlocksDropped is false.
    explicit RetryRule(bool isIntact) noexcept : m_isIntact(isIntact) {}

    // To be called after each failure of the host's writer of metadata, and after each writing of the pixels
    // with its result. Return the milliseconds to wait before another pass, or nothing where the result is
    // final.
    std::optional<DWORD> AfterMetadataFailure() noexcept;
    std::optional<DWORD> AfterPixels(HRESULT result) noexcept;

    static constexpr DWORD MostRetries = 3;
    DWORD RetriesLeft = MostRetries;
    bool BlocksDropped = false;

private:
    bool m_isIntact;
};

inline std::optional<DWORD> RetryRule::AfterMetadataFailure() noexcept
{
    if (!m_isIntact || BlocksDropped)
    {
        return std::nullopt;
    }
    BlocksDropped = true;
    return 0;
}

inline std::optional<DWORD> RetryRule::AfterPixels(HRESULT result) noexcept
{
    if (result == WINCODEC_ERR_BADIMAGE && RetriesLeft != 0)
    {
        --RetriesLeft;
        return 100 * (MostRetries - RetriesLeft);
    }
    RetriesLeft = MostRetries;
    return result == WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE ? AfterMetadataFailure() : std::nullopt;
}
