// One picture put on the service.
#pragma once

#include "com/ComPtr.h"
#include "publish/RunContext.h"
#include "publish/UploadOptions.h"

// Sends the file at sourcePath under uploadName, which is also the title of a picture without a
// caption. Returns when the transfer is over. What reply held is released first; it receives what the
// service answered, also when the result is the failure of the request itself. A success means that an
// answer came; the answer may still say that the picture was refused. Failures are returned, and
// nothing is sent after one.
HRESULT UploadOneFile(const RunContext &run, const WCHAR *sourcePath, const WCHAR *uploadName,
                      ComPtr<IUnknown> &reply, const UploadOptions &options) noexcept;
