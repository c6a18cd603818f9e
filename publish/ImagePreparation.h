// A new JPEG file in memory, made of a picture on disk: with the source's pixels and a choice of
// its metadata, or of the picture as the host turns, converts and scales it.
#pragma once

#include "com/ComPtr.h"
#include "core/Pause.h"
#include "publish/ItemTexts.h"
#include "publish/UploadOptions.h"

#include "HostContract.h"

#include <windows.h>

// The stream, at its start, and in texts the words that the host read. The mode is SendPixelsIntact or
// SendProcessed. The source is only ever read. A picture that can't be written is tried again, if need be
// without the metadata blocks of its source; wait is for the pauses between such tries, at most 600
// milliseconds. A failure that stands is thrown: WINCODEC_ERR_BADHEADER where the pixels of a file are to
// be kept that is no JPEG.
ComPtr<IStream> PrepareJpeg(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath, const WCHAR *uploadName,
                            const UploadOptions &options, const Pause &wait, ItemTexts &texts);
