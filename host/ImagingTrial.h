// Finds out by a trial what the system's imaging component does with metadata. Each trial runs once for
// the process. COM must be initialized.
#pragma once

enum class CopiedMetadata
{
    None,
    Some,
    Unknown // the trial failed
};

// Whether a JPEG file that the component writes of another one's frame holds metadata of that file.
CopiedMetadata TryCopyingMetadata() noexcept;

// Whether it finds the description in a JPEG file's EXIF block.
bool TryReadingMetadata() noexcept;
