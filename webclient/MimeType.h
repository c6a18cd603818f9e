// The media type of a file by its extension, in upper or lower case; "application/octet-stream" for an
// extension that isn't known, or none.
#pragma once

#include "com/WideText.h"

const WCHAR *MimeTypeOfFile(WideView fileName) noexcept;
