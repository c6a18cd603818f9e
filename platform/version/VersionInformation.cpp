// Version resources: reads the block of a file and finds values in it by their path.
#include "com/AsciiText.h"
#include "com/ErrnoCodes_posix.h"
#include "platform/kernel32/ResourceSection.h"
#include "com/TextConversion.h"

#include <winver.h>

#include <cstring>
#include <fstream>
#include <vector>

namespace
{
// The block as it is in the file. Sets the last error and returns an empty one if the file has none.
std::vector<BYTE> ReadVersionBlock(const WCHAR *fileName)
{
    const std::string path = ToUtf8(fileName);
    int error = 0;
    const auto section = FindResourceSection(path, error);
    if (!section)
    {
        SetLastError(error != 0 ? Win32FromErrno(error) : ERROR_RESOURCE_DATA_NOT_FOUND);
        return {};
    }
    std::vector<BYTE> resources(section->size);
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(section->offset));
    file.read(reinterpret_cast<char *>(resources.data()), static_cast<std::streamsize>(resources.size()));
    const ResourceMatch match =
        file ? FindResourceEntry(resources, MAKEINTRESOURCEW(16), MAKEINTRESOURCEW(VS_VERSION_INFO))
             : ResourceMatch();
    if (match.entry == nullptr)
    {
        SetLastError(match.typeExists ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND);
        return {};
    }
    const auto data = ResourceEntryData(match.entry);
    return {data.begin(), data.end()};
}

constexpr size_t Align(size_t offset)
{
    return (offset + 3) & ~size_t{3};
}

// One node of the block: length, value length, value type, key, value, child nodes. Value and children
// begin at multiples of four bytes from the start of the block, which is aligned itself.
class Node
{
public:
    Node() = default;
    Node(const BYTE *block, size_t offset, size_t end) : m_block(block), m_offset(offset)
    {
        constexpr size_t fixedPart = 3 * sizeof(WORD);
        if (offset + fixedPart > end)
        {
            return;
        }
        const size_t length = Word(0);
        if (length < fixedPart || offset + length > end)
        {
            return;
        }
        const WideView rest(reinterpret_cast<const WCHAR *>(block + offset + fixedPart),
                            (length - fixedPart) / sizeof(WCHAR));
        const size_t keyLength = rest.find(WCHAR{0});
        if (keyLength == WideView::npos)
        {
            return;
        }
        m_key = rest.substr(0, keyLength);
        m_end = offset + length;
        m_value = std::min(Align(offset + fixedPart + (keyLength + 1) * sizeof(WCHAR)), m_end);
        m_valid = true;
    }

    explicit operator bool() const { return m_valid; }
    const void *Value() const { return m_block + m_value; }

    // In characters for texts, in bytes otherwise.
    UINT ValueLength() const { return Word(1); }

    Node Child(WideView key) const
    {
        for (size_t at = Align(m_value + ValueBytes()); at < m_end;)
        {
            const Node child(m_block, at, m_end);
            if (!child)
            {
                break;
            }
            if (child.HasKey(key))
            {
                return child;
            }
            at = Align(child.m_end);
        }
        return {};
    }

private:
    WORD Word(size_t index) const
    {
        WORD value = 0;
        std::memcpy(&value, m_block + m_offset + index * sizeof(WORD), sizeof(value));
        return value;
    }

    size_t ValueBytes() const { return Word(2) == 1 ? ValueLength() * sizeof(WCHAR) : ValueLength(); }

    bool HasKey(WideView key) const { return EqualsIgnoringCase(key, m_key); }

    const BYTE *m_block = nullptr;
    size_t m_offset = 0;
    size_t m_value = 0;
    size_t m_end = 0;
    WideView m_key;
    bool m_valid = false;
};
} // namespace

DWORD WINAPI GetFileVersionInfoSizeW(const WCHAR *fileName, DWORD *handle)
{
    if (handle != nullptr)
    {
        *handle = 0;
    }
    const auto block = ReadVersionBlock(fileName);
    return static_cast<DWORD>(block.size());
}

BOOL WINAPI GetFileVersionInfoW(const WCHAR *fileName, DWORD, DWORD capacity, void *buffer)
{
    if (buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_DATA);
        return FALSE;
    }
    const auto block = ReadVersionBlock(fileName);
    if (block.empty())
    {
        return FALSE;
    }
    if (capacity < block.size())
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(buffer, block.data(), block.size());
    return TRUE;
}

BOOL WINAPI VerQueryValueW(const void *block, const WCHAR *path, void **value, UINT *length)
{
    const auto *const bytes = static_cast<const BYTE *>(block);
    WORD blockLength = 0;
    if (block != nullptr)
    {
        std::memcpy(&blockLength, bytes, sizeof(blockLength));
    }
    Node node = block != nullptr ? Node(bytes, 0, blockLength) : Node();
    for (WideView left(path != nullptr ? path : u""); node && !left.empty();)
    {
        const size_t end = std::min(left.find('\\'), left.size());
        if (end > 0)
        {
            node = node.Child(left.substr(0, end));
        }
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    if (!node)
    {
        if (length != nullptr)
        {
            *length = 0;
        }
        SetLastError(block != nullptr ? ERROR_RESOURCE_TYPE_NOT_FOUND : ERROR_INVALID_DATA);
        return FALSE;
    }
    *value = const_cast<void *>(node.Value());
    if (length != nullptr)
    {
        *length = node.ValueLength();
    }
    return TRUE;
}
