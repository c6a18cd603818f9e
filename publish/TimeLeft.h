// The status line during an upload: how many items are published, and how long the rest takes.
//
// The first estimates of a run are worth little, so the line says "estimating" until enough is done: of a short
// run a percentage of its work, which falls with the number of items; of a long run a number of finished
// items, which rises with it. Seconds are shown from two to five minutes and in steps of five; elsewhere they would
// only flicker.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// "2 hours, 1 minute", "3 minutes, 5 seconds", "less than one minute"; NoEstimate counts as no time.
WideText TimeText(UINT64 ticks);

// Whether enough of a run of count items is done to show an estimate. count is at least 1.
bool EstimateMayShow(UINT64 count, UINT64 doneUnits);

// The whole line. countText and doneText are the numbers of all and of finished items as the user's locale
// writes them; a run of one item shows neither.
WideText StatusLine(UINT64 count, UINT64 doneUnits, UINT64 ticksLeft, const WCHAR *countText,
                    const WCHAR *doneText);
