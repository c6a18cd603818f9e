#include "publish/TimeLeft.h"

#include "core/FormatText.h"
#include "core/StringTable.h"
#include "publish/PublishStatistics.h"
#include "resources/resource.h"

#include <cmath>

namespace
{
constexpr UINT64 TicksPerMinute = 60 * TicksPerSecond;
constexpr UINT64 TicksPerHour = 60 * TicksPerMinute;
constexpr UINT64 TicksPerDay = 24 * TicksPerHour;

struct Unit
{
    UINT singular;
    UINT plural;
};
constexpr Unit Day{IDS_TIME_DAY, IDS_TIME_DAYS};
constexpr Unit Hour{IDS_TIME_HOUR, IDS_TIME_HOURS};
constexpr Unit Minute{IDS_TIME_MINUTE, IDS_TIME_MINUTES};
constexpr Unit Second{IDS_TIME_SECOND, IDS_TIME_SECONDS};

WideText Piece(UINT64 number, const Unit &unit)
{
    const WideText word = LoadStringOrPlaceholder(number == 1 ? unit.singular : unit.plural);
    return FormatText(TEXT("%d %ls"), static_cast<int>(number), word.c_str());
}

WideText Pieces(UINT64 first, const Unit &firstUnit, UINT64 second, const Unit &secondUnit)
{
    WideText text = Piece(first, firstUnit);
    if (second > 0)
    {
        text += TEXT(", ");
        text += Piece(second, secondUnit);
    }
    return text;
}

// For up to 30 items a percentage, from 75 for one item down to 50 for 30; for more items a number of finished
// items, from 15 for 31 up to 50 for 1000. Linear in between.
UINT64 Threshold(UINT64 count)
{
    if (count < 30)
    {
        return 75 - static_cast<UINT64>((static_cast<double>(count) * 25 - 25) * 0.034482758620689655);
    }
    if (count == 30 || count >= 1000)
    {
        return 50;
    }
    const double fall = static_cast<double>(count - 30) * 35 * -0.0010309278350515464;
    return static_cast<UINT64>(15 - static_cast<INT64>(fall));
}
} // namespace

WideText TimeText(UINT64 ticks)
{
    if (ticks == NoEstimate)
    {
        ticks = 0;
    }
    const UINT64 days = ticks / TicksPerDay;
    const UINT64 hours = ticks % TicksPerDay / TicksPerHour;
    const UINT64 minutes = ticks % TicksPerHour / TicksPerMinute;
    const UINT64 seconds = ticks % TicksPerMinute / TicksPerSecond;
    if (days > 0)
    {
        return Pieces(days, Day, hours, Hour);
    }
    if (hours > 0)
    {
        return Pieces(hours, Hour, minutes, Minute);
    }
    if (minutes < 2)
    {
        return LoadStringOrPlaceholder(IDS_TIME_LESS_THAN_A_MINUTE);
    }
    if (minutes >= 5)
    {
        return Piece(minutes, Minute);
    }
    const UINT64 rounded = (seconds + 4) / 5 * 5;
    return Pieces(minutes, Minute, rounded == 60 ? 59 : rounded, Second);
}

bool EstimateMayShow(UINT64 count, UINT64 doneUnits)
{
    const UINT64 measure = doneUnits / (count <= 30 ? count : UnitsPerItem);
    return measure >= Threshold(count);
}

WideText StatusLine(UINT64 count, UINT64 doneUnits, UINT64 ticksLeft, const WCHAR *countText,
                    const WCHAR *doneText)
{
    WideText estimate;
    if (count > 0 && EstimateMayShow(count, doneUnits))
    {
        const WideText label = LoadStringOrPlaceholder(IDS_TIME_LEFT);
        estimate = FormatText(TEXT("%ls %ls."), label.c_str(), TimeText(ticksLeft).c_str());
    }
    else
    {
        estimate = LoadStringOrPlaceholder(IDS_TIME_ESTIMATING);
    }
    if (count < 2)
    {
        return estimate;
    }
    const WideText items = FormatText(LoadStringOrPlaceholder(IDS_ITEMS_PUBLISHED).c_str(), doneText, countText);
    return items + TEXT(' ') + estimate;
}
