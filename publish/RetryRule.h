// After which failures a picture is prepared anew, and how.
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

    // Told of each failure of the host's writer of metadata, and of each outcome of writing the pixels.
    // Both answer with the milliseconds after which to start a new pass, or with nothing where the
    // outcome stands.
    std::optional<DWORD> AfterMetadataFailure() noexcept;
    std::optional<DWORD> AfterPixels(HRESULT result) noexcept;

private:
    static constexpr DWORD MostRetries = 3;

    bool m_copiesBlocks;
    DWORD m_retriesLeft = MostRetries;
};
