#include "ui/PlacementArithmetic.h"

#include <algorithm>

namespace
{
// The near limit is applied last, so it wins if both can't be kept.
LONG Held(LONG start, LONG length, LONG nearLimit, LONG farLimit)
{
    return std::max(std::min(start, farLimit - length), nearLimit);
}

LONG Middle(LONG start, LONG end)
{
    return (start + end) / 2;
}
} // namespace

POINT CentredWithin(const RECT &window, const RECT &around, const RECT &limits) noexcept
{
    const LONG width = window.right - window.left;
    const LONG height = window.bottom - window.top;
    const LONG x = Middle(around.left, around.right) - width / 2;
    const LONG y = Middle(around.top, around.bottom) - height / 2;
    return {Held(x, width, limits.left, limits.right), Held(y, height, limits.top, limits.bottom)};
}

POINT CentredOnPoint(const RECT &frame, POINT pointer, const RECT &workArea) noexcept
{
    const LONG left = frame.left + pointer.x - Middle(frame.left, frame.right);
    const LONG top = frame.top + pointer.y - Middle(frame.top, frame.bottom);
    const LONG width = std::min<LONG>(frame.right - frame.left, workArea.right - workArea.left);
    const LONG height = std::min<LONG>(frame.bottom - frame.top, workArea.bottom - workArea.top);
    return {Held(left, width, workArea.left, workArea.right), Held(top, height, workArea.top, workArea.bottom)};
}

LONG OffsetInPixels(INT32 offset, int dotsPerInch) noexcept
{
    constexpr double inchesPerUnit = 0.010416667; // 1/96, rounded
    // Halves of negative offsets go up too, unlike with std::lround.
    return static_cast<LONG>(static_cast<double>(offset) * dotsPerInch * inchesPerUnit +
                             0.5); // NOLINT(bugprone-incorrect-roundings)
}
