// The publishing of one item: which of its files, in which mode, and what the service made of it.
#pragma once

#include "publish/RunContext.h"

// Called once at a run's start: loads the settings, and logs the mode in which JPEG files are uploaded.
void PrepareRun(const RunContext &run);

// Uploads one file of the item and decides from the reply whether it was published. A failure is written to
// the host's log and shown by the bar. Returns S_OK if the run may continue, E_FAIL if the service itself
// refused the picture.
HRESULT PublishItem(const RunContext &run, const ItemRecord &record);
