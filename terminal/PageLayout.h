// Places the controls of a page in the cells of a terminal, one below the other, with the order, indentation
// and gaps between groups of the page's dialog template.
#pragma once

#include "settings/PageTemplate.h"

#include <vector>

struct ControlPlace
{
    int Row;    // from the page's first
    int Height; // rows, frames included
    int Column;
    int Width;                   // reserved cells; the text may be shorter
    std::vector<WideText> Lines; // the control's text, wrapped, without mark or frame
};

// Cells of "[x] " or "(o) " before the text of a check box or radio button.
inline constexpr int MarkCells = 4;

// Returns one place for each control. texts holds their present texts; columns is the page's width in cells.
std::vector<ControlPlace> LayOutPage(const std::vector<TemplateControl> &controls,
                                     const std::vector<WideText> &texts, int columns);

// The number of rows of the whole page.
int RowsOf(const std::vector<ControlPlace> &places);
