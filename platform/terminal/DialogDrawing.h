// Draws a dialog as lines of text.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <cstddef>
#include <string>
#include <vector>

struct DrawingOptions
{
    size_t columns = 80; // of the terminal; the drawing takes at most 78
    bool unicode = true;
    bool colour = true;
};

// The dialog in its frame, and below it one line that says what the user can type. The lines have no line
// ends.
std::vector<std::string> DrawDialog(const DialogPage &page, const DrawingOptions &options);

// The same without frame and keys, for standard error where no terminal can answer.
std::string DescribeDialog(const DialogPage &page, bool unicode);

// The letter that selects the radio button with this index; 0 if there are no letters left.
char RadioButtonKey(size_t index);
