// Shows progress reports on the host's bar and status line.
#pragma once

#include "publish/RunContext.h"

// What a report reads and changes.
struct ProgressDisplay
{
    const ProgressWindows &Windows;
    PublishStatistics &Statistics;
    LocaleNumberFormat &Numbers;
    TickSource Now;
};

// Shows one report of IUploadProgressCallback; unknown codes change nothing. The percentage of the current
// file and the last status text exist once per process, so only one run may report at a time. E_OUTOFMEMORY
// is thrown.
void ShowProgress(ProgressDisplay &display, UINT32 code, UINT32 total, UINT32 done);
