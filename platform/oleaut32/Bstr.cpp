// BSTR: the length in bytes lies in the four bytes ahead of the text, a zero unit behind it.
#include <windows.h>
#include <oleauto.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{
// Four bytes of length, and four ahead of them that keep the text aligned for anything.
constexpr size_t HeaderSize = 8;
constexpr UINT LongestText = (UINT_MAX - 16) / sizeof(OLECHAR);

DWORD *LengthOf(BSTR text)
{
    return reinterpret_cast<DWORD *>(text) - 1;
}

BSTR Allocate(UINT bytes)
{
    const size_t padded = (static_cast<size_t>(bytes) + sizeof(OLECHAR) + 1) & ~size_t{1};
    auto *block = static_cast<unsigned char *>(std::malloc(HeaderSize + padded));
    if (block == nullptr)
    {
        return nullptr;
    }
    auto text = reinterpret_cast<BSTR>(block + HeaderSize);
    *LengthOf(text) = bytes;
    // After an odd number of bytes, too, a whole zero unit follows the last byte.
    std::memset(block + HeaderSize + bytes, 0, padded - bytes);
    return text;
}
} // namespace

BSTR WINAPI SysAllocStringByteLen(LPCSTR bytes, UINT length)
{
    if (length > LongestText * sizeof(OLECHAR))
    {
        return nullptr;
    }
    BSTR text = Allocate(length);
    if (text != nullptr && bytes != nullptr)
    {
        std::memcpy(text, bytes, length);
    }
    return text;
}

BSTR WINAPI SysAllocStringLen(const OLECHAR *source, UINT length)
{
    if (length > LongestText)
    {
        return nullptr;
    }
    return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(source), length * sizeof(OLECHAR));
}

BSTR WINAPI SysAllocString(const OLECHAR *source)
{
    if (source == nullptr)
    {
        return nullptr;
    }
    const size_t length = std::char_traits<OLECHAR>::length(source);
    return length > LongestText ? nullptr : SysAllocStringLen(source, static_cast<UINT>(length));
}

void WINAPI SysFreeString(BSTR text)
{
    if (text != nullptr)
    {
        std::free(reinterpret_cast<unsigned char *>(text) - HeaderSize);
    }
}

UINT WINAPI SysStringByteLen(BSTR text)
{
    return text ? *LengthOf(text) : 0;
}

UINT WINAPI SysStringLen(BSTR text)
{
    return SysStringByteLen(text) / sizeof(OLECHAR);
}

// source may lie inside the old string; without a source the old text is kept as far as it fits.
INT WINAPI SysReAllocStringLen(BSTR *text, const OLECHAR *source, UINT length)
{
    if (text == nullptr)
    {
        return FALSE;
    }
    BSTR changed = SysAllocStringLen(source, length);
    if (changed == nullptr)
    {
        return FALSE;
    }
    if (source == nullptr && *text != nullptr)
    {
        std::memcpy(changed, *text, std::min(length, SysStringLen(*text)) * sizeof(OLECHAR));
    }
    SysFreeString(*text);
    *text = changed;
    return TRUE;
}

INT WINAPI SysReAllocString(LPBSTR text, const OLECHAR *source)
{
    if (text == nullptr)
    {
        return FALSE;
    }
    if (source == nullptr)
    {
        SysFreeString(*text);
        *text = nullptr;
        return TRUE;
    }
    const size_t length = std::char_traits<OLECHAR>::length(source);
    return length > LongestText ? FALSE : SysReAllocStringLen(text, source, static_cast<UINT>(length));
}
