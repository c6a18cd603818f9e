// Whether the system's JPEG encoder knows the option "JpegYCrCbSubsampling".
#pragma once

#include <windows.h>

// The answer is found at the first call, on any thread, and kept for the process.
bool JpegSubsamplingSupported();

// The option came with version 6.1 of Windows. An earlier one has it with an update that also made the imaging
// component free-threaded: its threading model shows whether the update is there.
bool VersionHasJpegSubsampling(DWORD major, DWORD minor) noexcept;

// Whether a component's InProcServer32 key names a threading model for calls from any thread: "Both" or
// "Free", in any case and as text. False for a key that can't be read.
bool IsFreeThreaded(HKEY root, const WCHAR *serverKey) noexcept;
