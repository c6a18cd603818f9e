// Strings and icons from a module's resources. The string table has blocks of 16 strings, each a length and that many
// characters.
#include "platform/kernel32/ResourceSection.h"

#include "com/WideText.h"

#include <algorithm>

namespace
{
// Returns a view into the module's resources, without a terminator; empty if the table has no such string.
WideView FindString(HINSTANCE module, UINT id)
{
    constexpr UINT perBlock = 16;
    const HRSRC block = FindResourceW(module, MAKEINTRESOURCEW(id / perBlock + 1), MAKEINTRESOURCEW(6));
    if (block == nullptr)
    {
        return {};
    }
    const auto data = ResourceEntryData(reinterpret_cast<const BYTE *>(block));
    WideView left(reinterpret_cast<const WCHAR *>(data.data()), data.size() / sizeof(WCHAR));
    for (UINT skipped = 0; !left.empty(); ++skipped)
    {
        const size_t length = std::min<size_t>(left[0], left.size() - 1);
        if (skipped == id % perBlock)
        {
            return left.substr(1, length);
        }
        left.remove_prefix(1 + length);
    }
    return {};
}
} // namespace

// Only with a capacity of 0: buffer is really the address of a pointer, which receives the table's own text.
int WINAPI LoadStringW(HINSTANCE module, UINT id, WCHAR *buffer, int capacity)
{
    if (buffer == nullptr || capacity != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const WideView text = FindString(module, id);
    *reinterpret_cast<const WCHAR **>(buffer) = text.empty() ? nullptr : text.data();
    return static_cast<int>(text.size());
}

// Natively icons are never drawn. An icon's handle is the address of its resource entry, so that each
// resource has exactly one handle and nothing must be freed.
HICON WINAPI LoadIconW(HINSTANCE module, LPCWSTR name)
{
    constexpr WORD iconGroup = 14;
    const HRSRC group = FindResourceW(module, name, MAKEINTRESOURCEW(iconGroup));
    if (group == nullptr)
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    }
    return reinterpret_cast<HICON>(group);
}
