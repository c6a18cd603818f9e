// The media type of a file by its name's extension, whatever its case. A name that tells nothing
// gives "application/octet-stream".
#pragma once

#include "com/WideText.h"

const WCHAR *MimeTypeOfFile(WideView fileName) noexcept;
