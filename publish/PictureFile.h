// Opens a picture to upload its bytes as they are.
#pragma once

#include "com/ComPtr.h"

#include <objidl.h>

// A stream at the file's start; the file is shared with readers but not with writers. With verifyContainer
// the file must really be JPEG, GIF or PNG: an image of another kind is thrown as WINCODEC_ERR_BADHEADER,
// other failures with the code of the call that failed.
ComPtr<IStream> OpenPictureFile(const WCHAR *path, bool verifyContainer);
