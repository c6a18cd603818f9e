// Makes a new JPEG file in memory from a picture on disk: with the source's pixels and a selection of its
// metadata, or from the picture as the host turns, converts and scales it.
//
// One attempt to write the file is a pass: it opens the source, creates an encoder, copies the metadata and
// writes the pixels. Where a pass fails for a reason that may pass (RetryRule.h), all its objects are
// released and another one begins from the source file, since an encoder that failed can't be used again.
#pragma once

#include "com/ComPtr.h"
#include "core/Pause.h"
#include "publish/ItemRecord.h"
#include "publish/UploadOptions.h"

#include "HostContract.h"

#include <windows.h>

// Returns the file as a stream at its start, and in texts the words that the host read. The mode is
// SendPixelsIntact or SendProcessed. The source is only ever read. wait is called between two passes, for at
// most 600 milliseconds in all. The failure of the last pass is thrown: WINCODEC_ERR_BADHEADER for
// SendPixelsIntact with a file that is no JPEG.
ComPtr<IStream> PrepareJpeg(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath, const WCHAR *uploadName,
                            const UploadOptions &options, const Pause &wait, ItemTexts &texts);
