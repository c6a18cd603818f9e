// What a progress report does to the host's bar and status line.
#pragma once

#include "publish/RunContext.h"

// What reports of progress move and read.
struct ProgressDisplay
{
    const ProgressWindows &Windows;
    PublishStatistics &Statistics;
    LocaleNumberFormat &Numbers;
    TickSource Now;
};

// Shows one report of IUploadProgressCallback; unknown codes change nothing. The percentage of the
// current file and the last status text are kept once per process: one run at a time reports.
// Throws what making the texts throws.
void ShowProgress(ProgressDisplay &display, UINT32 code, UINT32 total, UINT32 done);
