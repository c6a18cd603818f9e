// Which of an item's files is uploaded, and as what.
#pragma once

#include "com/WideText.h"

enum class ExtensionClass
{
    Jpeg,
    Web,
    Other
};

// Without the dot; case doesn't matter.
ExtensionClass ClassifyExtension(WideView extension) noexcept;

struct FileChoice
{
    ExtensionClass Class; // Other: uploaded as a new JPEG
    WideView Extension;   // as the host gave it; empty for an item without extensions
};

// From a list separated by ";". The first JPEG, GIF or PNG wins over whatever stands before it;
// without one it is the first extension of all. The view points into extensions.
FileChoice ChooseFile(WideView extensions);
