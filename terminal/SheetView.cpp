#include "terminal/SheetView.h"

#include "core/StringTable.h"
#include "resources/resource.h"
#include "terminal/TerminalText.h"

#include <algorithm>

namespace
{
// In cells; on a larger terminal the sheet keeps this size and gets a frame.
constexpr int Widest = 80;
constexpr int Tallest = 24;
constexpr int PageMargin = 2;
constexpr int RowsForKeys = 20; // a lower sheet needs all its rows for the page

constexpr const WCHAR *OkWord = TEXT("[   OK   ]");
constexpr const WCHAR *CancelWord = TEXT("[ Cancel ]");
constexpr const WCHAR *KeyWords = TEXT("Tab move   Space change   Ctrl+PgDn next page   Enter OK   Esc cancel");
constexpr const WCHAR *WaitingWord = TEXT("Please wait...");

int Cells(WideView text)
{
    return static_cast<int>(TerminalWidth(text));
}
} // namespace

void SheetView::Draw(const SheetPicture &picture, TerminalPage &page)
{
    m_picture = picture;
    m_targets.clear();
    m_screen.Clear();
    m_sheet.Width = std::min(m_screen.Columns(), Widest);
    m_sheet.Height = std::min(m_screen.Rows(), Tallest);
    m_sheet.Left = (m_screen.Columns() - m_sheet.Width) / 2;
    m_sheet.Top = (m_screen.Rows() - m_sheet.Height) / 2;
    if (m_screen.Columns() >= Widest + 2 && m_screen.Rows() >= Tallest + 2)
    {
        DrawFrame();
    }
    const int bottom = m_sheet.Top + m_sheet.Height - 1;
    DrawTabs();
    DrawRule(m_sheet.Top + 1);
    const int keyRows = DrawKeys(bottom);
    const int footRows = keyRows + DrawFoot(bottom - keyRows);
    DrawRule(bottom - footRows);
    m_pageRows = std::max(m_sheet.Height - footRows - 3, 1);
    const int pageColumns = std::max(m_sheet.Width - 2 * PageMargin, 1);
    page.Draw({m_sheet.Left + PageMargin, m_sheet.Top + 2, pageColumns, m_pageRows},
              m_picture.Focus == SheetPlace::Page);
    m_screen.Show();
}

const SheetTarget *SheetView::TargetAt(int column, int row) const
{
    const auto found = std::ranges::find_if(m_targets, [&](const SheetTarget &target) {
        return row == target.Area.Top && column >= target.Area.Left &&
               column < target.Area.Left + target.Area.Width;
    });
    return found == m_targets.end() ? nullptr : &*found;
}

void SheetView::DrawRule(int row)
{
    const WCHAR line = m_screen.IsUnicode() ? u'─' : u'-';
    m_screen.Write(m_sheet.Left, row, WideText(static_cast<size_t>(m_sheet.Width), line), Look::Dim);
}

void SheetView::DrawFrame()
{
    const bool isUnicode = m_screen.IsUnicode();
    const WideText line(static_cast<size_t>(m_sheet.Width), isUnicode ? u'─' : u'-');
    const WideText side = isUnicode ? TEXT("│") : TEXT("|");
    const WCHAR *const corners = isUnicode ? TEXT("╭╮╰╯") : TEXT("++++");
    const int bottom = m_sheet.Top + m_sheet.Height;
    m_screen.Write(m_sheet.Left - 1, m_sheet.Top - 1, corners[0] + line + corners[1], Look::Dim);
    m_screen.Write(m_sheet.Left - 1, bottom, corners[2] + line + corners[3], Look::Dim);
    for (int row = m_sheet.Top; row < bottom; ++row)
    {
        m_screen.Write(m_sheet.Left - 1, row, side, Look::Dim);
        m_screen.Write(m_sheet.Left + m_sheet.Width, row, side, Look::Dim);
    }
}

// The tab of the page on top is drawn as "[Photos]", the others as " Options "; the sheet's title comes before
// them if there is room. On a narrow terminal there is only the page on top, with its number: "< JPEG Settings 3/5 >".
void SheetView::DrawTabs()
{
    const std::vector<WideText> &titles = m_picture.Titles;
    int width = 0;
    for (const WideText &title : titles)
    {
        width += Cells(title) + 2;
    }
    if (width + 2 > m_sheet.Width)
    {
        const auto digit = [](size_t number) { return static_cast<WCHAR>(u'0' + number); };
        const WideText number = {u' ', digit(m_picture.Top + 1), u'/', digit(titles.size())};
        DrawTab(m_picture.Top, m_sheet.Left + 1, TEXT("< ") + titles[m_picture.Top] + number + TEXT(" >"));
        return;
    }
    const WideText caption = LoadStringOrPlaceholder(IDS_DISPLAY_NAME);
    int column = m_sheet.Left + 1;
    if (Cells(caption) + width + 5 <= m_sheet.Width)
    {
        m_screen.Write(column + 1, m_sheet.Top, caption, Look::Strong);
        column = m_sheet.Left + m_sheet.Width - width - 1;
    }
    for (size_t i = 0; i < titles.size(); ++i)
    {
        const bool isTop = i == m_picture.Top;
        DrawTab(i, column, isTop ? TEXT("[") + titles[i] + TEXT("]") : TEXT(" ") + titles[i]);
        column += Cells(titles[i]) + 2;
    }
}

void SheetView::DrawTab(size_t index, int column, const WideText &text)
{
    const bool isTop = index == m_picture.Top;
    const bool hasFocus = isTop && m_picture.Focus == SheetPlace::Tabs;
    m_screen.Write(column, m_sheet.Top, text, hasFocus ? Look::Focus : isTop ? Look::Strong : Look::Plain);
    m_targets.push_back({SheetPlace::Tabs, index, {column, m_sheet.Top, Cells(text), 1}});
    if (hasFocus)
    {
        m_screen.PlaceCursor(column + 1, m_sheet.Top);
    }
}

// Returns the number of rows used.
int SheetView::DrawKeys(int row)
{
    if (m_sheet.Height < RowsForKeys || m_sheet.Width < Cells(KeyWords) + 2 * PageMargin)
    {
        return 0;
    }
    m_screen.Write(m_sheet.Left + PageMargin, row, KeyWords, Look::Dim);
    return 1;
}

// The buttons and the link; returns the number of rows used.
int SheetView::DrawFoot(int row)
{
    const int cancelColumn = m_sheet.Left + m_sheet.Width - Cells(CancelWord) - 2;
    const int okColumn = cancelColumn - Cells(OkWord) - 2;
    DrawButton(SheetPlace::Ok, okColumn, row, OkWord, Look::Plain);
    DrawButton(SheetPlace::Cancel, cancelColumn, row, CancelWord, Look::Plain);
    if (!m_picture.IsWaiting && !m_picture.HasLink)
    {
        return 1;
    }
    const WideText link =
        m_picture.IsWaiting ? WideText(WaitingWord) : WithoutLinkMarks(LoadStringOrPlaceholder(IDS_HOMEPAGE_LINK));
    const int column = m_sheet.Left + PageMargin;
    const int linkRow = column + Cells(link) + 2 > okColumn ? row - 1 : row;
    if (m_picture.IsWaiting)
    {
        m_screen.Write(column, linkRow, link, Look::Strong);
    }
    else
    {
        DrawButton(SheetPlace::Link, column, linkRow, link, Look::Link);
    }
    return row - linkRow + 1;
}

void SheetView::DrawButton(SheetPlace place, int column, int row, const WideText &text, Look look)
{
    const bool hasFocus = m_picture.Focus == place && !m_picture.IsWaiting;
    m_screen.Write(column, row, text, m_picture.IsWaiting ? Look::Dim : hasFocus ? Look::Focus : look);
    m_targets.push_back({place, 0, {column, row, Cells(text), 1}});
    if (hasFocus)
    {
        m_screen.PlaceCursor(column + (place == SheetPlace::Link ? 0 : 2), row);
    }
}
