// Writes to the host's log, from any thread. Formats are those of FormatText.h; a null format logs "(internal
// error)", a null host logs nothing. The host's result is ignored.
#pragma once

#include "com/WideText.h"

#include "HostContract.h"

void LogVerbose(IHalvoraPublishingHost *host, const WCHAR *format, ...);
void LogInfo(IHalvoraPublishingHost *host, const WCHAR *format, ...);
void LogWarning(IHalvoraPublishingHost *host, const WCHAR *format, ...);
void LogError(IHalvoraPublishingHost *host, const WCHAR *format, ...);
void LogFatal(IHalvoraPublishingHost *host, const WCHAR *format, ...);
