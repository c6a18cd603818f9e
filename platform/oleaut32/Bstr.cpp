// BSTR: the length in bytes lies in the four bytes ahead of the text, a zero unit behind it.
#include <windows.h>
#include <oleauto.h>

#include <climits>
#include <cstdlib>
#include <cstring>

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
    auto *block = static_cast<unsigned char *>(std::malloc(HeaderSize + bytes + sizeof(OLECHAR)));
    if (block == nullptr)
    {
        return nullptr;
    }
    auto text = reinterpret_cast<BSTR>(block + HeaderSize);
    *LengthOf(text) = bytes;
    text[bytes / sizeof(OLECHAR)] = 0;
    return text;
}
} // namespace

BSTR WINAPI SysAllocStringLen(const OLECHAR *source, UINT length)
{
    BSTR text = length > LongestText ? nullptr : Allocate(length * sizeof(OLECHAR));
    if (text != nullptr && source != nullptr)
    {
        std::memcpy(text, source, length * sizeof(OLECHAR));
    }
    return text;
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
