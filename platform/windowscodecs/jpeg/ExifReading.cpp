#include "platform/windowscodecs/jpeg/ExifBlock.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"

#include <algorithm>

using namespace std::string_view_literals;

namespace
{
constexpr auto Signature = "Exif\0\0"sv;

constexpr WORD LeftOut[] = {
    // Of pictures that aren't kept: subfile kind, strips, tiles, SubIFDs, thumbnail.
    254, 255, 273, 278, 279, 322, 323, 324, 325, 330, ExifTag::ThumbnailOffset, ExifTag::ThumbnailLength,
    // What is removed as a block of its own, a second time.
    ExifTag::XmpPacket, ExifTag::IptcRecords, ExifTag::PhotoshopResources,
    // Padding, and how far a maker note was moved.
    0xEA1C, 0xEA1D};

bool IsLeftOut(WORD tag) noexcept
{
    return std::find(std::begin(LeftOut), std::end(LeftOut), tag) != std::end(LeftOut);
}
} // namespace

class ExifReader
{
public:
    ExifReader(const Bytes &contents, ExifBlock &block)
        : m_data(contents.data() + Signature.size()),
          m_size(static_cast<UINT>(contents.size() - Signature.size())),
          m_block(block),
          m_budget(2 * m_size)
    {
    }

    bool Read()
    {
        if (m_size < 8 || m_data[0] != m_data[1] || (m_data[0] != 'I' && m_data[0] != 'M'))
        {
            return false;
        }
        m_block.BigEndian = m_data[0] == 'M';
        if (Get16(2) != 42)
        {
            return false;
        }
        return ReadDirectory(Get32(4), m_block.Main);
    }

private:
    // The main directory, EXIF's below it, and that of interoperability below that. A crafted block may
    // nest thousands of them.
    static constexpr int MaxDepth = 2;

    UINT Get16(UINT at) const noexcept
    {
        return m_block.BigEndian ? m_data[at] << 8 | m_data[at + 1] : m_data[at] | m_data[at + 1] << 8;
    }

    UINT Get32(UINT at) const noexcept
    {
        return m_block.BigEndian ? Get16(at) << 16 | Get16(at + 2) : Get16(at) | Get16(at + 2) << 16;
    }

    bool Holds(UINT at, ULONGLONG size) const noexcept { return at <= m_size && size <= m_size - at; }

    // Entries may share their bytes; the budget keeps a crafted block from growing without limit, and
    // the list of directories from running in circles.
    bool ReadDirectory(UINT at, ExifDirectory &directory)
    {
        if (!Holds(at, 2) || std::find(m_seen.begin(), m_seen.end(), at) != m_seen.end())
        {
            return false;
        }
        m_seen.push_back(at);
        const UINT count = Get16(at);
        UINT place = at + 2;
        for (UINT i = 0; i < count && Holds(place, 12); ++i, place += 12)
        {
            ReadEntry(place, directory);
        }
        return true;
    }

    void ReadEntry(UINT place, ExifDirectory &directory)
    {
        const WORD tag = static_cast<WORD>(Get16(place));
        const WORD type = static_cast<WORD>(Get16(place + 2));
        if (tag == ExifTag::ExifDirectory || tag == ExifTag::GpsDirectory || tag == ExifTag::InteropDirectory)
        {
            ReadChild(tag, Get32(place + 8), directory);
            return;
        }
        const ULONGLONG size = ULONGLONG{Get32(place + 4)} * ExifElementBytes(type);
        const UINT offset = size <= 4 ? place + 8 : Get32(place + 8);
        if (size == 0 || !Holds(offset, size) || size > m_budget || IsLeftOut(tag) ||
            directory.Find(tag) != nullptr)
        {
            return;
        }
        m_budget -= static_cast<UINT>(size);
        if (tag == ExifTag::MakerNote)
        {
            m_block.m_makerNoteOffset = size > 4 ? offset : 0;
        }
        directory.Set({tag, type, Bytes(m_data + offset, m_data + offset + size)});
    }

    void ReadChild(WORD tag, UINT offset, ExifDirectory &directory)
    {
        if (m_depth == MaxDepth || directory.Children.count(tag) != 0)
        {
            return;
        }
        ++m_depth;
        ExifDirectory child;
        if (ReadDirectory(offset, child) && !child.IsEmpty())
        {
            directory.Children.emplace(tag, std::move(child));
        }
        --m_depth;
    }

    const BYTE *m_data;
    UINT m_size;
    ExifBlock &m_block;
    UINT m_budget;
    std::vector<UINT> m_seen;
    int m_depth = 0;
};

std::optional<ExifBlock> ExifBlock::Read(const Bytes &contents)
{
    ExifBlock block;
    if (!BeginsWith(contents, Signature) || !ExifReader(contents, block).Read())
    {
        return std::nullopt;
    }
    return block;
}
