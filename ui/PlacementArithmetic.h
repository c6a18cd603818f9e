// The arithmetic of placing windows. Rectangles are in pixels of one coordinate system; right and bottom are
// exclusive, as in RECT.
#pragma once

#include <windows.h>

// The top left corner that puts the middle of window on the middle of around and keeps the window within
// limits. A window larger than limits sticks out at the right and bottom.
POINT CentredWithin(const RECT &window, const RECT &around, const RECT &limits) noexcept;

// The top left corner that puts the middle of frame on the pointer and keeps the frame within workArea. A
// larger frame counts as having the size of workArea.
POINT CentredOnPoint(const RECT &frame, POINT pointer, const RECT &workArea) noexcept;

// Converts an offset in 1/96 inch to pixels of a device: the whole part of the exact value plus 0.5.
LONG OffsetInPixels(INT32 offset, int dotsPerInch) noexcept;
