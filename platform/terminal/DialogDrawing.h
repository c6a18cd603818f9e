// The picture of a dialog in lines of text.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <cstddef>
#include <string>
#include <vector>

struct DrawingOptions
{
    size_t columns = 80; // of the terminal; the picture stays narrower than 80
    bool unicode = true;
    bool colour = true;
};

// The frame with everything in it, and below it one line that says what can be typed. No line ends.
std::vector<std::string> DrawDialog(const DialogPage &page, const DrawingOptions &options);

// The same without a frame and without what is to be typed, for where nobody can.
std::string DescribeDialog(const DialogPage &page, bool unicode);

// The letter that selects the n-th radio button; 0 if there are no letters left.
char RadioButtonKey(size_t index);
