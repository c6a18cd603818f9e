// The host's observer of uploads.
#pragma once

#include <windows.h>
#include <unknwn.h>

// Tells it, if this process has one, the result and the reply of an upload. reply may be null.
void TellUploadObserver(HRESULT result, IUnknown *reply) noexcept;
