// A copy of the module's version resource.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <array>
#include <vector>

class VersionBlock
{
public:
    // Without a version: every text is empty.
    VersionBlock() noexcept = default;

    // Read from the file of the module that this code is linked into; empty if that fails.
    static VersionBlock OfThisModule();

    // The text of that name ("FileVersion", "LegalCopyright" ...) in the first language that the
    // resource lists; empty if there is none.
    WideText String(const WCHAR *name) const;

    // Major, minor, build, revision of the file version; false, and parts unchanged, if there is none.
    bool FileVersion(std::array<UINT16, 4> &parts) const;

private:
    // A non-empty value of the block; null if there is none.
    const void *Query(const WCHAR *path, UINT *length) const;

    std::vector<BYTE> m_block;
};
