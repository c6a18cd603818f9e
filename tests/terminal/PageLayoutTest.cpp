#include "terminal/PageLayout.h"

#include "resources/resource.h"
#include "terminal/TerminalText.h"

#include <gmock/gmock.h>

namespace
{
std::vector<ControlPlace> LayOut(UINT id, int columns, PageTemplate &page)
{
    page = ReadPageTemplate(id).value();
    std::vector<WideText> texts;
    for (const TemplateControl &control : page.Controls)
    {
        texts.push_back(control.Text);
    }
    return LayOutPage(page.Controls, texts, columns);
}
} // namespace

TEST(PageLayout, NoRowIsTakenTwiceAndNoLineLeavesThePage)
{
    for (const UINT id : {IDD_PHOTOS, IDD_OPTIONS, IDD_JPEG, IDD_RAW, IDD_ABOUT})
    {
        for (const int columns : {12, 36, 56, 76, 120})
        {
            PageTemplate page;
            int row = 0;
            for (const ControlPlace &place : LayOut(id, columns, page))
            {
                EXPECT_GE(place.Row, row);
                EXPECT_LE(place.Row, row + 1);
                row = place.Row + place.Height;
                EXPECT_LE(place.Column + place.Width, columns);
                for (const WideText &line : place.Lines)
                {
                    EXPECT_LE(TerminalWidth(line), static_cast<size_t>(place.Width));
                }
            }
        }
    }
}

TEST(PageLayout, AStandardTerminalHoldsEveryPage)
{
    for (const UINT id : {IDD_PHOTOS, IDD_OPTIONS, IDD_JPEG, IDD_RAW, IDD_ABOUT})
    {
        PageTemplate page;
        EXPECT_LE(RowsOf(LayOut(id, 76, page)), 20) << id;
    }
}

TEST(PageLayout, KeepsIndentationAndGapsOfTheTemplate)
{
    PageTemplate page;
    const auto places = LayOut(IDD_OPTIONS, 76, page);
    std::vector<std::pair<int, int>> rowsAndColumns;
    for (const ControlPlace &place : places)
    {
        rowsAndColumns.emplace_back(place.Row, place.Column);
    }
    using testing::Pair;
    EXPECT_THAT(rowsAndColumns,
                testing::ElementsAre(Pair(0, 0), Pair(1, 2), Pair(2, 2), Pair(3, 2), Pair(5, 0), Pair(6, 2),
                                     Pair(7, 2), Pair(8, 2), Pair(10, 0), Pair(11, 2), Pair(12, 2)));
}
