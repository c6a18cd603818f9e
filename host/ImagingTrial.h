// What the system's imaging component does with metadata, tried out with pictures made for it. What counts is
// the bytes that it reads and writes: it may say yes to a call that changes nothing. Each trial is made once.
// COM must be initialized.
#pragma once

// What a JPEG file that the component writes of another one's frame, with its blocks, holds of that file's
// metadata.
enum class CopiedMetadata
{
    None,
    Removable, // what isn't removed
    Lasting,   // also what was to be removed
    Unknown    // the trial failed
};

struct MetadataSupport
{
    CopiedMetadata copies = CopiedMetadata::Unknown;
    bool writes = false; // whether a text that is set gets into the file
};

MetadataSupport TryWritingMetadata() noexcept;

// Whether the component finds the description in a JPEG file's EXIF block.
bool TryReadingMetadata() noexcept;
