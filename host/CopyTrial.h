// What the system's imaging component does with the metadata of a picture that is copied.
#pragma once

// Whether a JPEG file that the component writes of another one's frame can hold metadata of that file.
// Tried out once, with a picture made for it; true too where the trial fails. COM must be initialized.
bool ImagingCopiesMetadata() noexcept;
