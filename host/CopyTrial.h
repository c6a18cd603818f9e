// What the system's imaging component does with the metadata of a picture that is copied.
#pragma once

enum class CopiedMetadata
{
    None,
    Some,
    Unknown     // the trial failed
};

// Whether a JPEG file that the component writes of another one's frame holds metadata of that file.
// Tried out once, with a picture made for it. COM must be initialized.
CopiedMetadata TryCopyingMetadata() noexcept;
