#include "publish/ProgressReport.h"

#include "core/NumberFormat.h"
#include "publish/TimeLeft.h"

#include <commctrl.h>

namespace
{
UINT32 lastPercent = 0;
WideText lastStatusText;

// Moves the bar by the difference and never sets it from the run's own numbers, so that a failed item leaves
// a gap in the bar.
void MoveBar(HWND bar, UINT32 delta)
{
    const auto position = static_cast<UINT32>(SendMessageW(bar, PBM_GETPOS, 0, 0));
    SendMessageW(bar, PBM_SETPOS, position + delta, 0);
}

WideText NumberText(LocaleNumberFormat &numbers, UINT64 value)
{
    WCHAR text[64] = {};
    FormatNumber(numbers, {.Unsigned = value}, NUMBER_UNSIGNED, 0, text);
    return text;
}

void ShowBytes(ProgressDisplay &display, UINT32 total, UINT32 done)
{
    if (total == 0)
    {
        return;
    }
    const auto percent = static_cast<UINT32>(UINT64{done} * 100 / total);
    if (percent == lastPercent)
    {
        return;
    }
    const UINT32 delta = percent - lastPercent;
    MoveBar(display.Windows.ProgressWindow, delta);
    lastPercent = percent;
    display.Statistics.AddDoneUnits(delta);

    const UINT64 ticksLeft = display.Statistics.RemainingTime(display.Now());
    const UINT64 count = display.Statistics.TotalUnits() / UnitsPerItem;
    const UINT64 doneUnits = display.Statistics.DoneUnits();
    const WideText countText = NumberText(display.Numbers, count);
    const WideText doneText = NumberText(display.Numbers, doneUnits / UnitsPerItem);
    const WideText line = StatusLine(count, doneUnits, ticksLeft, countText.c_str(), doneText.c_str());
    if (line != lastStatusText)
    {
        lastStatusText = line;
        SetWindowTextW(display.Windows.StaticTextWindow, line.c_str());
    }
}
} // namespace

void ShowProgress(ProgressDisplay &display, UINT32 code, UINT32 total, UINT32 done)
{
    switch (code)
    {
    case UPLOAD_BEGIN:
        lastPercent = 0;
        lastStatusText.clear();
        break;
    case UPLOAD_BYTES:
        ShowBytes(display, total, done);
        break;
    case RUN_FAILED:
        SendMessageW(display.Windows.ProgressWindow, PBM_SETSTATE, PBST_ERROR, 0);
        break;
    case RUN_CANCELLED:
    case ITEM_FAILED:
        SendMessageW(display.Windows.ProgressWindow, PBM_SETSTATE, PBST_PAUSED, 0);
        break;
    }
}
