#include "host/MetadataSnapshots.h"

#include "host/ExifFields.h"

#include "com/BstrOwner.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr size_t MostKept = 8;
// The record's word for GPS is the narrowest; 0 stands for blank.
constexpr UINT64 LongestKey = 0xFFFF;

static_assert(sizeof(ItemRecord::XmpGroup) > sizeof(UINT64));
} // namespace

void MetadataSnapshots::Put(SnapshotPtr snapshot, ItemRecord &record)
{
    if (IsCopyrightBlank(record))
    {
        record.CopyrightTexts[0] = BstrOwner(WideView(TEXT(""))).Detach();
    }
    const UINT16 orientation = snapshot->orientation;
    const BYTE isAdobeRgb = snapshot->isAdobeRgb ? 1 : 0;
    UINT64 key;
    {
        const std::lock_guard guard(m_lock);
        key = ++m_lastKey;
        m_entries.push_back({key, std::move(snapshot)});
        if (m_entries.size() > MostKept)
        {
            m_entries.pop_front();
        }
    }
    record.ExifGroup = key;
    record.GpsGroup = static_cast<UINT16>(key % LongestKey + 1);
    std::memset(record.XmpGroup, 0, sizeof(record.XmpGroup));
    std::memcpy(record.XmpGroup, &key, sizeof(key));
    std::memcpy(record.Opaque11C, &orientation, sizeof(orientation));
    record.Opaque11C[sizeof(orientation)] = isAdobeRgb;
}

SnapshotPtr MetadataSnapshots::Find(UINT64 key) const
{
    const std::lock_guard guard(m_lock);
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) { return entry.key == key; });
    return found == m_entries.end() ? nullptr : found->snapshot;
}

RecordGroup MetadataSnapshots::Exif(const ItemRecord &record) const
{
    return record.ExifGroup == 0 ? RecordGroup{} : RecordGroup{false, Find(record.ExifGroup)};
}

RecordGroup MetadataSnapshots::Gps(const ItemRecord &record) const
{
    if (record.GpsGroup == 0)
    {
        return {};
    }
    const std::lock_guard guard(m_lock);
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return entry.key % LongestKey + 1 == record.GpsGroup;
    });
    return {false, found == m_entries.end() ? nullptr : found->snapshot};
}

RecordGroup MetadataSnapshots::Xmp(const ItemRecord &record) const
{
    const auto is = [](BYTE wanted) { return [wanted](BYTE value) { return value == wanted; }; };
    // All are 0 in a record that was laid out but never filled.
    if (std::all_of(std::begin(record.XmpGroup), std::end(record.XmpGroup), is(0xFF)) ||
        std::all_of(std::begin(record.XmpGroup), std::end(record.XmpGroup), is(0)))
    {
        return {};
    }
    UINT64 key = 0;
    std::memcpy(&key, record.XmpGroup, sizeof(key));
    return {false, Find(key)};
}

UINT16 OrientationOf(const ItemRecord &record)
{
    UINT16 orientation = 0;
    std::memcpy(&orientation, record.Opaque11C, sizeof(orientation));
    return ValidOrientation(orientation);
}

bool IsAdobeRgb(const ItemRecord &record)
{
    return record.Opaque11C[sizeof(UINT16)] != 0;
}

bool IsCopyrightBlank(const ItemRecord &record)
{
    return record.ExifComment == nullptr &&
           std::all_of(std::begin(record.CopyrightTexts), std::end(record.CopyrightTexts),
                       [](BSTR text) { return text == nullptr; });
}

bool IsIptcBlank(const ItemRecord &record)
{
    return record.Iptc.Word10 == 1;
}
