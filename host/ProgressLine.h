// The one line that a terminal shows of a running publication.
#pragma once

#include <cstdint>
#include <string>

// The bar's states, by the numbers of PBM_SETSTATE.
enum class BarState
{
    Normal = 1,
    Error = 2,
    Paused = 3
};

struct ProgressView
{
    int64_t low = 0;
    int64_t high = 0;
    int64_t position = 0;
    BarState state = BarState::Normal;
    std::string status; // UTF-8
};

struct LineStyle
{
    size_t columns = 80;  // of the terminal
    bool unicode = false; // blocks in eighths, and texts as they are; else ASCII alone
    bool colour = false;
};

// Bar, percent and status text, by display width at most columns - 1, so that the cursor stays in the
// line. What doesn't fit is left out in this order: the end of the status, the bar, the status, the percent.
// Without colour the line has no control sequence at all. A range of no length counts as not begun.
std::string RenderProgressLine(const ProgressView &view, const LineStyle &style);
