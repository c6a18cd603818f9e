// Maximum output sizes as a user types them: nothing or "Original" for the full size, a number of
// pixels, or a print size in inches or centimetres. White space and thousands separators in a text are
// ignored, and only its beginning counts: "1,024 x 768" is 1024 pixels.
//
// A print size becomes pixels through a resolution that falls as the print grows, from 330 dots per inch at
// 4 inches to 180 at 30: a large print is looked at from farther away. So an upload is no larger than the print
// needs.
//
// The operations without a format read the user's locale at each call. No shared state; any thread.
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

// Units of a stored expression, with its terminator.
constexpr size_t OutputSizeCapacity = 32;

// Units of a text that are read, without white space and thousands separators; what follows them is ignored. It
// keeps the regular expression's recursion within the stack of any thread.
constexpr size_t OutputSizeReadLimit = 1000;

// Reads a text without white space and thousands separators. Returns false, with 0 pixels, if it holds no size.
bool ParseOutputSize(WideView text, double &number, OutputSizeUnit &unit, const LocaleNumberFormat &format);

// Rewrites the zero-terminated text in buffer in its display form, such as "Original", "1,024 px", 8" print or
// 20 cm print; wordId names the string that follows a print size. Writes at most capacity units, with the
// terminator.
void NormalizeOutputSize(WCHAR *buffer, size_t capacity, UINT wordId);
WideText NormalizeOutputSize(WideView text, UINT wordId, LocaleNumberFormat &format);

// Returns the long edge in pixels, 0 for the full size, and the resolution for it in dots per inch: between 330
// and 180 for a print size, 300 otherwise. A size beyond 2147483647 pixels gives that number.
INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit);
INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit, const LocaleNumberFormat &format);

// The resolution for a print size: dpiAtSmallest up to the smaller end of the range, dpiAtLargest from the
// larger end on, interpolated linearly in between.
double PrintResolution(double size, double smallest, double largest, double dpiAtSmallest, double dpiAtLargest);
