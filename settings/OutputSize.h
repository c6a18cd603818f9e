// Maximum output sizes as a user types them: nothing or "Original" for the full size, a number of
// pixels, or a print size in inches or centimetres. White space and thousands separators in a text count
// for nothing, and only its beginning counts: "1,024 x 768" is 1024 pixels.
//
// The operations without a format read the user's locale anew at each call; no shared state, any thread.
#pragma once

#include "core/NumberFormat.h"
#include "com/WideText.h"

#include <windows.h>

enum OutputSizeUnit
{
    UNIT_PIXELS = 0,
    UNIT_INCHES = 1,
    UNIT_CENTIMETRES = 2
};

// Units of a stored expression, its closing zero included.
constexpr size_t OutputSizeCapacity = 32;

// Reads a text without white space and thousands separators. False, with 0 pixels, if it holds no size.
bool ParseOutputSize(WideView text, double &number, OutputSizeUnit &unit, const LocaleNumberFormat &format);

// Rewrites the zero-terminated text in buffer in its display form: "Original", "1,024 px", or such as
// 8" print and 20 cm print, where wordId names the string that follows a print size. At most capacity units
// are written, the closing zero included.
void NormalizeOutputSize(WCHAR *buffer, size_t capacity, UINT wordId);
WideText NormalizeOutputSize(WideView text, UINT wordId, LocaleNumberFormat &format);

// Long edge in pixels, 0 for the full size, and the resolution in dots per inch to go with it: between 330
// and 180 for a print size, 300 for everything else.
INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit);
INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit, const LocaleNumberFormat &format);

// The resolution for a print size: dpiAtSmallest up to the smaller end of the range, dpiAtLargest from the
// larger on, in proportion between them.
double PrintResolution(double size, double smallest, double largest, double dpiAtSmallest, double dpiAtLargest);
