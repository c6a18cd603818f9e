// One run: from the host's list of items to the end that the log, the status line and the bar tell.
#pragma once

#include "publish/RunContext.h"

// Runs on the calling thread and returns when the run is over, however it ended. bar and statusText
// are the host's windows, kept in the context for as long as the run lasts.
void RunPublish(const RunContext &run, HWND bar, HWND statusText);

// Asks a run to stop after the item that it is at, or abruptly within it. Any thread.
void RequestCancel(IHalvoraPublishingHost *host, CancelFlags &cancel, bool abruptly) noexcept;
