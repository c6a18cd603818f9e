// A new JPEG file in memory, made of a picture on disk: with the source's pixels and a choice of
// its metadata, or of the picture as the host turns, converts and scales it.
#pragma once

#include "core/ComPtr.h"
#include "publish/ItemTexts.h"
#include "publish/UploadOptions.h"

#include "HostContract.h"

// The stream, at its start, and in texts the words that the host read. Failures are thrown. Not
// built yet: every call fails with E_NOTIMPL, which fails the item like any other failure.
ComPtr<IStream> PrepareJpeg(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath,
                            const WCHAR *uploadName, const UploadOptions &options, ItemTexts &texts);
