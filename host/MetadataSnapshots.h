// Keeps the metadata of EXIF, GPS and XMP, for which an item record has no room, until it is written.
//
// The record's words for these groups hold the key of a snapshot instead. A picture that was read has its
// key in all of them, also for a group of which it holds nothing, so that 0 and 0xFF mean one thing only:
// the plug-in removed the group.
#pragma once

#include "com/WideText.h"

#include "HostContract.h"

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

// One field of an EXIF block.
struct ExifField
{
    enum class Directory
    {
        Main,
        Exif,
        Gps
    };
    Directory directory;
    WORD tag;
    WORD type;              // TIFF 6.0's numbers, 1 to 12
    std::vector<BYTE> data; // little-endian

    auto operator<=>(const ExifField &) const = default;
};

constexpr int NoNumber = -100;

struct MetadataSnapshot
{
    std::vector<ExifField> camera; // camera and shooting data, by the lists in ExifFields.cpp
    std::vector<ExifField> gps;
    int rating = NoNumber;  // -1 (rejected) to 5
    int urgency = NoNumber; // 0 to 8
    WideText label;
    UINT16 orientation = 1;  // EXIF's numbers, 1 to 8
    bool isAdobeRgb = false; // by IsAdobeRgb of ExifFields.h
};

using SnapshotPtr = std::shared_ptr<const MetadataSnapshot>;

// What a record holds of one of the three groups. A group that the plug-in removed is blank.
struct RecordGroup
{
    bool blank = true;
    SnapshotPtr snapshot; // null too if the record outlived its snapshot
};

// Keeps the last 8; any thread. An older record's key finds nothing, never another picture's snapshot.
class MetadataSnapshots
{
public:
    // Keeps the snapshot and puts its key, the orientation and the colours into the record, whose texts are there
    // already. If it has no text of the copyright group, artist is set to "" so that "read, empty" differs
    // from "removed by the plug-in". Throws E_OUTOFMEMORY.
    void Put(SnapshotPtr snapshot, ItemRecord &record);

    RecordGroup Exif(const ItemRecord &record) const;
    RecordGroup Gps(const ItemRecord &record) const;
    RecordGroup Xmp(const ItemRecord &record) const;

private:
    struct Entry
    {
        UINT64 key;
        SnapshotPtr snapshot;
    };

    SnapshotPtr Find(UINT64 key) const;

    mutable std::mutex m_lock;
    std::deque<Entry> m_entries;
    UINT64 m_lastKey = 0;
};

// 1 for a record that was never read into.
UINT16 OrientationOf(const ItemRecord &record);

// Whether the file that was read into the record names Adobe RGB by its EXIF block.
bool IsAdobeRgb(const ItemRecord &record);

bool IsCopyrightBlank(const ItemRecord &record);
bool IsIptcBlank(const ItemRecord &record);
