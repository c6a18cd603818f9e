// The words of the status line during an upload.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// "2 hours, 1 minute", "3 minutes, 5 seconds", "less than one minute"; NoEstimate counts as no time.
WideText TimeText(UINT64 ticks);

// Whether enough of a run of count items is done for an estimate that a user may see: of a short
// run a share, of a long one a number of items. count is at least 1.
bool EstimateMayShow(UINT64 count, UINT64 doneUnits);

// The whole line. countText and doneText are the numbers of items, of the run and finished, as the
// user's locale writes them; a run of one item shows neither.
WideText StatusLine(UINT64 count, UINT64 doneUnits, UINT64 ticksLeft, const WCHAR *countText,
                    const WCHAR *doneText);
