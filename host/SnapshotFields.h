// Which fields of an EXIF block belong to a snapshot's groups, and how much of them.
#pragma once

#include "host/MetadataSnapshots.h"

#include <cstddef>
#include <span>

struct TagRange
{
    WORD first;
    WORD last;
};

// Of the camera's group in the main and the EXIF directory, or of the place's in that of GPS.
std::span<const TagRange> SnapshotTags(ExifField::Directory directory);

// Puts fields into a snapshot: those of the lists, each once, and no more than an EXIF block can hold.
class SnapshotFields
{
public:
    explicit SnapshotFields(MetadataSnapshot &groups) : m_groups(groups) {}

    // Whether a field of that many bytes would be taken.
    bool Wants(ExifField::Directory directory, WORD tag, WORD type, size_t size) const;
    void Keep(ExifField field);

private:
    std::vector<ExifField> &GroupOf(ExifField::Directory directory) const;

    MetadataSnapshot &m_groups;
    size_t m_bytes = 0;
};
