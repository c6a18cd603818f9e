#include "settings/PageLayout_terminal.h"

#include "resources/resource.h"
#include "settings/CellText_terminal.h"

#include <gmock/gmock.h>

#include <clocale>

namespace
{
struct UserLocale
{
    UserLocale() : before(std::setlocale(LC_CTYPE, nullptr)) { std::setlocale(LC_CTYPE, "C.UTF-8"); }
    ~UserLocale() { std::setlocale(LC_CTYPE, before.c_str()); }
    std::string before;
};

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
                    EXPECT_LE(CellsOf(line), static_cast<size_t>(place.Width));
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

TEST(CellText, CountsAndBreaksAsTheTerminalDoes)
{
    const UserLocale utf8;
    EXPECT_EQ(CellsOf(u"a\u0301\u6f22\U0001F4F7"), 5u);
    EXPECT_EQ(FitToCells(u"\u6f22\u6f22\u6f22", 5), u"\u6f22\u6f22");
    EXPECT_EQ(FitToCells(u"\u6f22", 1), u"");
    using testing::ElementsAre;
    EXPECT_THAT(WrapToCells(u"one two three", 7), ElementsAre(u"one two", u"three"));
    EXPECT_THAT(WrapToCells(u"abcdefghij kl", 4), ElementsAre(u"abcd", u"efgh", u"ij", u"kl"));
    EXPECT_THAT(WrapToCells(u"\u6f22\u6f22\u6f22", 1), ElementsAre(u"\u6f22", u"\u6f22", u"\u6f22"));
    EXPECT_THAT(WrapToCells(u"", 4), ElementsAre(u""));
    EXPECT_EQ(CellCharacters(u"a\x1B[2J\n\u202e\xD800z"), L"a?[2J ??z");
}
