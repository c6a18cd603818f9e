// Draws a dialog as lines of text.
#pragma once

#include "terminal/Dialog.h"

#include <cstddef>
#include <string>
#include <vector>

struct DrawingOptions
{
    size_t Columns = 80; // of the terminal; the drawing takes at most 78
    bool IsUnicode = true;
    bool HasColour = true;
};

// The dialog in its frame, and below it one line that says what the user can type. The lines have no line
// ends.
std::vector<std::string> DrawDialog(const DialogPage &page, const DrawingOptions &options);

// The same without frame and keys, for standard error where no terminal can answer.
std::string DescribeDialog(const DialogPage &page, bool isUnicode);
