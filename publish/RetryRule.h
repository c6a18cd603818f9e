// Decides after which failures a picture is prepared once more, and how.
//
// Two kinds of failure are worth another pass. A picture may read as a bad one while another program is still
// writing its file: up to three more passes, after 100, 200 and 300 milliseconds. And the metadata blocks of
// the source may be such that no writer of metadata, or no encoder, can handle them: one more pass at once,
// without copying them. Every other failure is final.
#pragma once

#include <windows.h>

#include <optional>

class RetryRule
{
public:
    // copiesBlocks: the passes begin with copying the source's metadata blocks, and may do without.
    explicit RetryRule(bool copiesBlocks) noexcept : m_copiesBlocks(copiesBlocks) {}

    // Whether the next pass copies the source's metadata blocks.
    bool CopiesBlocks() const noexcept { return m_copiesBlocks; }

    // To be called after each failure of the host's writer of metadata, and after each writing of the pixels
    // with its result. Return the milliseconds to wait before another pass, or nothing where the result is
    // final.
    std::optional<DWORD> AfterMetadataFailure() noexcept;
    std::optional<DWORD> AfterPixels(HRESULT result) noexcept;

private:
    static constexpr DWORD MostRetries = 3;

    bool m_copiesBlocks;
    DWORD m_retriesLeft = MostRetries;
};
