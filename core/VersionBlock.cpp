#include "core/VersionBlock.h"

#include "core/FormatText.h"
#include "core/ThisModule.h"

#include <algorithm>

namespace
{
constexpr size_t LongestPath = 2000;
constexpr size_t LongestText = 4096;

struct Translation
{
    UINT16 language;
    UINT16 codePage;
};
} // namespace

VersionBlock VersionBlock::OfThisModule()
{
    const WideText path = ThisModulePath();
    VersionBlock version;
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &unused);
    if (size == 0)
    {
        return version;
    }
    std::vector<BYTE> block(size);
    if (GetFileVersionInfoW(path.c_str(), 0, size, block.data()))
    {
        version.m_block = std::move(block);
    }
    return version;
}

const void *VersionBlock::Query(const WCHAR *path, UINT *length) const
{
    void *value = nullptr;
    *length = 0;
    if (m_block.empty() || !VerQueryValueW(m_block.data(), path, &value, length) || *length == 0)
    {
        return nullptr;
    }
    return value;
}

WideText VersionBlock::String(const WCHAR *name) const
{
    UINT length = 0;
    const auto *translation = static_cast<const Translation *>(Query(TEXT("\\VarFileInfo\\Translation"), &length));
    if (translation == nullptr || length < sizeof(Translation))
    {
        return WideText();
    }
    const WideText path = FormatText(TEXT("\\StringFileInfo\\%04x%04x\\%ls"), int{translation->language},
                                     int{translation->codePage}, name);
    const auto *text =
        path.size() <= LongestPath ? static_cast<const WCHAR *>(Query(path.c_str(), &length)) : nullptr;
    if (text == nullptr)
    {
        return WideText();
    }
    // The length counts the terminator, unless the resource was made without one.
    const WideView value(text, std::min<size_t>(length, LongestText));
    return WideText(value.substr(0, value.find(WCHAR{0})));
}

bool VersionBlock::FileVersion(std::array<UINT16, 4> &parts) const
{
    UINT length = 0;
    const auto *fixed = static_cast<const VS_FIXEDFILEINFO *>(Query(TEXT("\\"), &length));
    if (fixed == nullptr || length < sizeof(VS_FIXEDFILEINFO))
    {
        return false;
    }
    parts = {HIWORD(fixed->dwFileVersionMS), LOWORD(fixed->dwFileVersionMS), HIWORD(fixed->dwFileVersionLS),
             LOWORD(fixed->dwFileVersionLS)};
    return true;
}
