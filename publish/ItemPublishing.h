// What a run does: once at its start, and for each of its items.
#pragma once

#include "publish/RunContext.h"

// Loads the settings and logs what they mean for the run.
void PrepareRun(const RunContext &run);

// Puts one file of the item on the service and judges the outcome. A failure goes to the host's log
// and to the bar. Returns S_OK if the run may go on, E_FAIL if the service itself refused.
HRESULT PublishItem(const RunContext &run, const ItemRecord &record);
