// Whether the system's JPEG encoder knows the option "JpegYCrCbSubsampling".
#pragma once

#include <windows.h>

// The answer for this process: worked out at the first call, on whatever thread, and kept.
bool JpegSubsamplingSupported();

// The option came with version 6.1 of the system. An earlier system has it with the update that also
// made the imaging component free-threaded.
bool VersionHasJpegSubsampling(DWORD major, DWORD minor) noexcept;

// Whether a component's InProcServer32 key names a threading model for calls from any thread: "Both" or
// "Free", in any case, as text. False for a key that can't be read.
bool IsFreeThreaded(HKEY root, const WCHAR *serverKey) noexcept;
