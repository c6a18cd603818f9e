// Where the controls of a page stand in the cells of a terminal: in the order, with the indentation and with
// the gaps between groups that the page's template has. Native builds only.
#pragma once

#include "settings/PageTemplate.h"

#include <vector>

struct ControlPlace
{
    int Row;    // from the page's first
    int Height; // rows, frames included
    int Column;
    int Width;                   // of the room: what is behind belongs to nobody
    std::vector<WideText> Lines; // of a text, wrapped, without its mark or frame
};

// "[x] " and "(o) ", before the text of a box or radio button.
inline constexpr int MarkCells = 4;

// One place for each control. texts has what each says at present. columns is the page's width.
std::vector<ControlPlace> LayOutPage(const std::vector<TemplateControl> &controls,
                                     const std::vector<WideText> &texts, int columns);

// Rows of the whole page.
int RowsOf(const std::vector<ControlPlace> &places);
