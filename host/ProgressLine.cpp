#include "host/ProgressLine.h"

#include "com/TextConversion.h"
#include "terminal/TerminalText.h"

#include <algorithm>

namespace
{
constexpr size_t WidestBar = 40;
constexpr size_t NarrowestBar = 6;

// Columns beside the bar: the percentage, the blanks between, and a status text of some hundred
// items with two-part times. Reserved, so that the bar keeps its width while texts change.
constexpr size_t BesideTheBar = 4 + 3 + 68;

// The position in parts of the range, at most parts, never rounded up.
uint64_t PartsDone(const ProgressView &view, uint64_t parts)
{
    if (view.high <= view.low || view.position <= view.low)
    {
        return 0;
    }
    const auto range = static_cast<uint64_t>(view.high - view.low);
    const auto done = std::min(static_cast<uint64_t>(view.position - view.low), range);
    return done * parts / range;
}

std::string RenderBar(const ProgressView &view, size_t columns, bool unicode)
{
    static constexpr const char *Eighths[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    std::string bar;
    size_t taken = 0;
    if (unicode)
    {
        const auto done = PartsDone(view, columns * 8);
        for (; taken < done / 8; ++taken)
        {
            bar += "█";
        }
        bar += Eighths[done % 8];
        taken += done % 8 != 0;
        for (; taken < columns; ++taken)
        {
            bar += "░";
        }
        return bar;
    }
    const size_t filled = PartsDone(view, columns - 2);
    return "[" + std::string(filled, '#') + std::string(columns - 2 - filled, '.') + "]";
}

const char *ColourOf(BarState state)
{
    switch (state)
    {
    case BarState::Error:
        return "\x1b[31m";
    case BarState::Paused:
        return "\x1b[33m";
    default:
        return "\x1b[32m";
    }
}
} // namespace

std::string RenderProgressLine(const ProgressView &view, const LineStyle &style)
{
    const size_t room = style.columns > 0 ? style.columns - 1 : 0;
    std::string percent = std::to_string(PartsDone(view, 100)) + "%";
    percent.insert(0, 4 - std::min<size_t>(4, percent.size()), ' ');
    if (room < percent.size())
    {
        return std::string();
    }

    std::string bar;
    size_t used = percent.size();
    const size_t spare = room > BesideTheBar ? room - BesideTheBar : 0;
    const size_t columns = std::min(room / 3, std::clamp(spare, NarrowestBar, WidestBar));
    if (columns >= NarrowestBar)
    {
        bar = RenderBar(view, columns, style.unicode);
        used += columns + 1;
    }
    const size_t left = room - used;
    std::string status;
    if (left > 2)
    {
        const auto text = FromUtf8(view.status);
        status = TerminalLine(CutToWidth(text, left - 2, style.unicode), style.unicode);
    }

    std::string line;
    if (!bar.empty())
    {
        line = style.colour ? ColourOf(view.state) + bar + "\x1b[0m " : bar + " ";
    }
    line += percent;
    return status.empty() ? line : line + "  " + status;
}
