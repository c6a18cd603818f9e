#include "com/Hresult.h"
#include "platform/windowscodecs/jpeg/ExifBlock.h"
#include "jpegdata/JpegMarkers.h"

#include <algorithm>
#include <cstring>

#include <wincodec.h>

namespace
{
constexpr UINT SignatureBytes = 6;

// What SetResolution adds: three entries, and two values that each lie at an even place behind the table.
constexpr UINT ResolutionBytes = 3 * 12 + 2 * (8 + 1);

// Lays out one block: allocates from its start on, around the range that a maker note reserves.
class Layout
{
public:
    Layout(bool bigEndian, UINT reservedAt, UINT reservedSize)
        : m_bigEndian(bigEndian), m_reservedAt(reservedAt), m_reservedEnd(reservedAt + reservedSize)
    {
        m_out.resize(std::max(8u, m_reservedEnd));
        m_out[0] = m_out[1] = bigEndian ? 'M' : 'I';
        Put16(2, 42);
        m_free = 8;
    }

    bool Reserves() const noexcept { return m_reservedEnd > m_reservedAt; }

    UINT Place(UINT size)
    {
        UINT at = m_free + (m_free & 1);
        if (Reserves() && at < m_reservedEnd && at + size > m_reservedAt)
        {
            at = m_reservedEnd + (m_reservedEnd & 1);
        }
        m_free = at + size;
        if (m_out.size() < m_free)
        {
            m_out.resize(m_free);
        }
        return at;
    }

    void Put16(UINT at, UINT value) noexcept
    {
        m_out[at] = static_cast<BYTE>(m_bigEndian ? value >> 8 : value);
        m_out[at + 1] = static_cast<BYTE>(m_bigEndian ? value : value >> 8);
    }

    void Put32(UINT at, UINT value) noexcept
    {
        Put16(at, m_bigEndian ? value >> 16 : value & 0xFFFF);
        Put16(at + 2, m_bigEndian ? value & 0xFFFF : value >> 16);
    }

    UINT PlaceData(const Bytes &data)
    {
        const UINT at = Place(static_cast<UINT>(data.size()));
        Copy(at, data);
        return at;
    }

    void Copy(UINT at, const Bytes &data) { std::memcpy(&m_out[at], data.data(), data.size()); }

    UINT ReservedAt() const noexcept { return m_reservedAt; }
    Bytes Take() { return std::move(m_out); }

private:
    Bytes m_out;
    bool m_bigEndian;
    UINT m_reservedAt;
    UINT m_reservedEnd;
    UINT m_free = 0;
};

// One of both.
struct Slot
{
    WORD Tag;
    const ExifEntry *Entry;
    const ExifDirectory *Child;
};

std::vector<Slot> SlotsOf(const ExifDirectory &directory)
{
    std::vector<Slot> slots;
    for (const ExifEntry &entry : directory.Entries)
    {
        slots.push_back({entry.Tag, &entry, nullptr});
    }
    for (const auto &[tag, child] : directory.Children)
    {
        if (!child.IsEmpty())
        {
            slots.push_back({tag, nullptr, &child});
        }
    }
    std::ranges::sort(slots, {}, &Slot::Tag);
    return slots;
}

UINT WriteDirectory(Layout &layout, const ExifDirectory &directory);

void WriteSlot(Layout &layout, UINT place, const Slot &slot)
{
    layout.Put16(place, slot.Tag);
    if (slot.Entry == nullptr)
    {
        layout.Put16(place + 2, EXIF_LONG);
        layout.Put32(place + 4, 1);
        layout.Put32(place + 8, WriteDirectory(layout, *slot.Child));
        return;
    }
    const Bytes &data = slot.Entry->Data;
    layout.Put16(place + 2, slot.Entry->Type);
    layout.Put32(place + 4, static_cast<UINT>(data.size()) / ExifElementBytes(slot.Entry->Type));
    if (data.size() <= 4)
    {
        layout.Copy(place + 8, data);
    }
    else if (slot.Tag == ExifTag::MakerNote && layout.Reserves())
    {
        layout.Copy(layout.ReservedAt(), data);
        layout.Put32(place + 8, layout.ReservedAt());
    }
    else
    {
        layout.Put32(place + 8, layout.PlaceData(data));
    }
}

// The table first, then what its entries point to. Returns where the table lies.
UINT WriteDirectory(Layout &layout, const ExifDirectory &directory)
{
    const std::vector<Slot> slots = SlotsOf(directory);
    const UINT count = static_cast<UINT>(slots.size());
    const UINT at = layout.Place(2 + 12 * count + 4);
    layout.Put16(at, count);
    UINT place = at + 2;
    for (const Slot &slot : slots)
    {
        WriteSlot(layout, place, slot);
        place += 12;
    }
    return at;
}

const ExifEntry *MakerNoteOf(const ExifBlock &block) noexcept
{
    const auto exif = block.Main.Children.find(ExifTag::ExifDirectory);
    return exif != block.Main.Children.end() ? exif->second.Find(ExifTag::MakerNote) : nullptr;
}

Bytes Lay(const ExifBlock &block, UINT makerNoteAt)
{
    const ExifEntry *note = makerNoteAt >= 8 ? MakerNoteOf(block) : nullptr;
    const bool reserve = note != nullptr && note->Data.size() > 4;
    Layout layout(block.BigEndian, reserve ? makerNoteAt : 0, reserve ? static_cast<UINT>(note->Data.size()) : 0);
    layout.Put32(4, WriteDirectory(layout, block.Main));
    return layout.Take();
}
} // namespace

bool ExifBlock::Fits() const
{
    return Lay(*this, 0).size() + ResolutionBytes + SignatureBytes <= MaxSegmentBytes;
}

Bytes ExifBlock::Write() const
{
    for (const UINT makerNoteAt : {m_makerNoteOffset, 0u})
    {
        const Bytes block = Lay(*this, makerNoteAt);
        if (block.size() + SignatureBytes <= MaxSegmentBytes)
        {
            Bytes contents = {'E', 'x', 'i', 'f', 0, 0};
            contents.insert(contents.end(), block.begin(), block.end());
            return contents;
        }
    }
    ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
}
