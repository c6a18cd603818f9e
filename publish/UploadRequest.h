// The upload of one picture: obtains the bytes and the texts, builds the form, and sends it signed.
#pragma once

#include "com/ComPtr.h"
#include "publish/RunContext.h"
#include "publish/UploadOptions.h"

// Sends the file at sourcePath under uploadName, which is also the title of a picture without a caption.
// Returns when the transfer is over. reply is released first; it receives the service's answer, even where
// the request itself failed and the result is that failure. A success means that an answer came; the answer
// may still refuse the picture. A failure before the request is returned, and nothing is sent then.
HRESULT UploadOneFile(const RunContext &run, const WCHAR *sourcePath, const WCHAR *uploadName,
                      ComPtr<IUnknown> &reply, const UploadOptions &options) noexcept;
