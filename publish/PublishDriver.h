// Drives one run: takes the host's list of items, publishes one after the other, and reports the end to log,
// status line and bar. A failed item doesn't end the run; a refusal by the service does.
#pragma once

#include "publish/RunContext.h"

// Runs on the calling thread and returns when the run is over, however it ended. bar and statusText are the
// host's windows; the context holds them while the run lasts.
void RunPublish(const RunContext &run, HWND bar, HWND statusText);

// Asks a run to stop after the present item or, abruptly, within it. Any thread.
void RequestCancel(IHalvoraPublishingHost *host, CancelFlags &cancel, bool abruptly) noexcept;
