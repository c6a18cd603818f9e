// Where windows are put: the arithmetic alone. Rectangles are in pixels of one coordinate system,
// with right and bottom outside, as the platform has them.
#pragma once

#include <windows.h>

// Top left corner that puts the middle of window on the middle of around and keeps the window within
// limits. Of a window larger than the limits the right and bottom parts stick out.
POINT CentredWithin(const RECT &window, const RECT &around, const RECT &limits) noexcept;

// Top left corner that puts the middle of frame on the pointer and keeps the frame within workArea. A
// larger frame counts as being as large as the work area.
POINT CentredOnPoint(const RECT &frame, POINT pointer, const RECT &workArea) noexcept;

// Pixels of an offset in 1/96 inch on a device of so many dots per inch, halves rounded up and
// anything else beyond the point of the sum cut off.
LONG OffsetInPixels(INT32 offset, int dotsPerInch) noexcept;
