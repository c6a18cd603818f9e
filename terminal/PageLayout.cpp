#include "terminal/PageLayout.h"

#include "terminal/TerminalText.h"

#include <algorithm>

namespace
{
// In dialog units.
constexpr int UnitsOfCell = 4;
constexpr int PageMargin = 7;
constexpr int SmallestGroupGap = 5;

// A template gives the height with the list open.
constexpr int ClosedComboBoxHeight = 12;

constexpr int FewestEditLines = 4;
constexpr int NarrowestWidth = 8;

int HeightInUnits(const TemplateControl &control)
{
    return control.Kind == ControlKind::ComboBox ? ClosedComboBoxHeight : control.Place.Height;
}

// Whether an empty row goes before control, as the template leaves a gap there. A rule separates by itself.
bool IsSetApart(const TemplateControl &before, const TemplateControl &control)
{
    return before.Kind != ControlKind::Rule && control.Kind != ControlKind::Rule &&
           control.Place.Top - before.Place.Top - HeightInUnits(before) >= SmallestGroupGap;
}

int CellsBeforeText(ControlKind kind)
{
    return kind == ControlKind::CheckBox || kind == ControlKind::RadioButton ? MarkCells : 0;
}

ControlPlace PlaceOf(const TemplateControl &control, const WideText &text, int columns)
{
    ControlPlace place{};
    place.Column = std::min(std::max(control.Place.Left - PageMargin, 0) / UnitsOfCell,
                            std::max(columns - NarrowestWidth, 0));
    place.Width = std::max(columns - place.Column, 1);
    place.Height = 1;
    switch (control.Kind)
    {
    case ControlKind::Rule:
        break;
    case ControlKind::ComboBox:
        place.Width = std::min(place.Width, control.Place.Width / UnitsOfCell);
        break;
    case ControlKind::Edit:
        place.Lines = WrapToWidth(text, static_cast<size_t>(std::max(place.Width - 4, 1)));
        place.Height = std::max(static_cast<int>(place.Lines.size()), FewestEditLines) + 2;
        break;
    default:
        place.Lines =
            WrapToWidth(text, static_cast<size_t>(std::max(place.Width - CellsBeforeText(control.Kind), 1)));
        place.Height = std::max(static_cast<int>(place.Lines.size()), 1);
        break;
    }
    return place;
}
} // namespace

std::vector<ControlPlace> LayOutPage(const std::vector<TemplateControl> &controls,
                                     const std::vector<WideText> &texts, int columns)
{
    std::vector<ControlPlace> places;
    int row = 0;
    for (size_t i = 0; i < controls.size(); ++i)
    {
        row += i > 0 && IsSetApart(controls[i - 1], controls[i]) ? 1 : 0;
        places.push_back(PlaceOf(controls[i], texts[i], columns));
        places.back().Row = row;
        row += places.back().Height;
    }
    return places;
}

int RowsOf(const std::vector<ControlPlace> &places)
{
    return places.empty() ? 0 : places.back().Row + places.back().Height;
}
