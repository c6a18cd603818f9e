#include "terminal/TerminalText.h"
#include "terminal/TerminalPage.h"

#include <algorithm>

void TerminalPage::Scroll(int rows)
{
    m_scroll += rows;
    m_followsFocus = false;
}

void TerminalPage::Draw(const ScreenArea &area, bool hasFocus)
{
    m_area = area;
    m_places = LayOutPage(m_template.Controls, m_texts, area.Width);
    if (m_followsFocus)
    {
        ShowFocus();
    }
    m_scroll = std::clamp(m_scroll, 0, std::max(RowsOf(m_places) - area.Height, 0));
    for (size_t i = 0; i < m_places.size(); ++i)
    {
        DrawControl(i, hasFocus && i == m_focus);
    }
    DrawScrollMarks();
    if (m_isListOpen)
    {
        DrawList();
    }
}

// Scrolls so that the focused control is visible, with the labels above it, which are its heading; for the last
// control also with the notes below it.
void TerminalPage::ShowFocus()
{
    if (m_focus == NoControl)
    {
        m_scroll = 0;
        return;
    }
    size_t heading = m_focus;
    while (heading > 0 && (KindOf(heading - 1) == ControlKind::Label || KindOf(heading - 1) == ControlKind::Rule))
    {
        --heading;
    }
    size_t tail = m_focus;
    while (tail + 1 < m_places.size() && KindOf(tail + 1) == ControlKind::Label)
    {
        ++tail;
    }
    const int own = m_places[m_focus].Row;
    const int ownEnd = own + m_places[m_focus].Height;
    const int tailEnd = m_places[tail].Row + m_places[tail].Height;
    const int top = heading == m_focus ? own : m_places[heading].Row;
    const int end = tail + 1 == m_places.size() && tailEnd - own <= m_area.Height ? tailEnd : ownEnd;
    m_scroll = std::max(m_scroll, end - m_area.Height);
    m_scroll = std::min(m_scroll, end - top <= m_area.Height ? top : own);
}

void TerminalPage::Write(int column, int row, WideView text, Look look)
{
    if (IsOnScreen(row))
    {
        m_screen.Write(column, row, text, look);
    }
}

void TerminalPage::DrawControl(size_t control, bool hasFocus)
{
    const ControlPlace &place = m_places[control];
    const int column = m_area.Left + place.Column;
    const int row = m_area.Top + place.Row - m_scroll;
    const bool isEnabled = m_states[control].IsEnabled;
    int textColumn = column;
    switch (KindOf(control))
    {
    case ControlKind::Rule:
        Write(column, row, WideText(static_cast<size_t>(place.Width), m_screen.IsUnicode() ? u'─' : u'-'),
              Look::Dim);
        return;
    case ControlKind::ComboBox:
        DrawComboBox(control, column, row, hasFocus);
        return;
    case ControlKind::Edit:
        DrawEdit(place, column, row, hasFocus);
        return;
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
        DrawMark(control, column, row, hasFocus);
        textColumn += MarkCells;
        break;
    case ControlKind::Link:
        if (hasFocus && IsOnScreen(row))
        {
            m_screen.PlaceCursor(column, row);
        }
        break;
    case ControlKind::Label:
        break;
    }
    const bool isLink = KindOf(control) == ControlKind::Link;
    const Look look = !isEnabled ? Look::Dim : hasFocus ? Look::Focus : isLink ? Look::Link : Look::Plain;
    for (size_t line = 0; line < place.Lines.size(); ++line)
    {
        Write(textColumn, row + static_cast<int>(line), place.Lines[line], look);
    }
}

void TerminalPage::DrawMark(size_t control, int column, int row, bool hasFocus)
{
    const State &state = m_states[control];
    const bool isRadio = KindOf(control) == ControlKind::RadioButton;
    WideText mark = isRadio ? TEXT("( )") : TEXT("[ ]");
    if (state.Check != 0)
    {
        mark[1] = isRadio ? u'o' : u'x';
    }
    Write(column, row, mark, state.IsEnabled ? Look::Plain : Look::Dim);
    if (hasFocus && IsOnScreen(row))
    {
        m_screen.PlaceCursor(column + 1, row);
    }
}

void TerminalPage::DrawComboBox(size_t control, int column, int row, bool hasFocus)
{
    const WideText &text = m_texts[control];
    // "[", the text and the place behind it, the button that opens the list, "]"
    const auto room = static_cast<size_t>(std::max(m_places[control].Width - 4, 2));
    size_t start = 0;
    while (TerminalWidth(WideView(text).substr(start, m_caret - start)) > room - 1)
    {
        start = CharacterBehind(text, start);
    }
    const WideView shown = FitToWidth(WideView(text).substr(start), room);
    const size_t cells = TerminalWidth(shown);
    const Look frame = m_states[control].IsEnabled ? Look::Plain : Look::Dim;
    const Look filling = hasFocus && m_isAllSelected && !text.empty() ? Look::Focus : frame;
    const auto textEnd = column + 1 + static_cast<int>(cells);
    Write(column, row, TEXT("["), frame);
    Write(column + 1, row, shown, filling);
    Write(textEnd, row, WideText(room - cells, hasFocus ? u'_' : u' '), frame);
    const WCHAR *const button = m_screen.IsUnicode() ? TEXT(" ▾]") : TEXT(" v]");
    Write(column + 1 + static_cast<int>(room), row, button, frame);
    if (hasFocus && IsOnScreen(row))
    {
        const size_t before = TerminalWidth(WideView(text).substr(start, m_caret - start));
        m_screen.PlaceCursor(column + 1 + static_cast<int>(before), row);
    }
}

void TerminalPage::DrawEdit(const ControlPlace &place, int column, int row, bool hasFocus)
{
    const bool isUnicode = m_screen.IsUnicode();
    const Look look = hasFocus ? Look::Strong : Look::Dim;
    const WideText line(static_cast<size_t>(std::max(place.Width - 2, 0)), isUnicode ? u'─' : u'-');
    const WideText side = isUnicode ? TEXT("│") : TEXT("|");
    const int last = row + place.Height - 1;
    const WCHAR *const corners = isUnicode ? TEXT("┌┐└┘") : TEXT("++++");
    Write(column, row, corners[0] + line + corners[1], look);
    for (int at = row + 1; at < last; ++at)
    {
        Write(column, at, side, look);
        Write(column + place.Width - 1, at, side, look);
        if (const auto i = static_cast<size_t>(at - row - 1); i < place.Lines.size())
        {
            Write(column + 2, at, place.Lines[i], Look::Plain);
        }
    }
    Write(column, last, corners[2] + line + corners[3], look);
    if (hasFocus && IsOnScreen(row + 1))
    {
        m_screen.PlaceCursor(column + 2, row + 1);
    }
}

// Opens below the combo box, or above it where there is more room.
void TerminalPage::DrawList()
{
    const auto &list = m_states[m_focus].List;
    const ControlPlace &place = m_places[m_focus];
    const int row = m_area.Top + place.Row - m_scroll;
    const int below = m_area.Top + m_area.Height - row - 1;
    const int above = row - m_area.Top;
    const auto wanted = static_cast<int>(list.size());
    const bool isBelow = below >= std::min(wanted, above);
    const int height = std::min(wanted, isBelow ? below : above);
    if (height <= 0)
    {
        return;
    }
    m_listArea = {m_area.Left + place.Column, isBelow ? row + 1 : row - height, place.Width, height};
    const auto shown = static_cast<size_t>(height);
    m_listTop = std::min(m_listTop, m_listChoice);
    m_listTop = std::max(m_listTop, m_listChoice + 1 > shown ? m_listChoice + 1 - shown : 0);
    m_listTop = std::min(m_listTop, list.size() - shown);
    const auto room = static_cast<size_t>(std::max(place.Width - 4, 1));
    const WideText side = m_screen.IsUnicode() ? TEXT("│") : TEXT("|");
    for (size_t i = 0; i < shown; ++i)
    {
        WideText text(FitToWidth(list[m_listTop + i].Text, room));
        text.append(room - std::min(room, TerminalWidth(text)), u' ');
        const int at = m_listArea.Top + static_cast<int>(i);
        const bool isChoice = m_listTop + i == m_listChoice;
        Write(m_listArea.Left, at, side, Look::Plain);
        Write(m_listArea.Left + 1, at, TEXT(" ") + text + TEXT(" "), isChoice ? Look::Focus : Look::Plain);
        Write(m_listArea.Left + place.Width - 1, at, side, Look::Plain);
        if (isChoice)
        {
            m_screen.PlaceCursor(m_listArea.Left + 2, at);
        }
    }
}

void TerminalPage::DrawScrollMarks()
{
    const bool isUnicode = m_screen.IsUnicode();
    const int column = m_area.Left + m_area.Width + 1;
    if (m_scroll > 0)
    {
        Write(column, m_area.Top, isUnicode ? TEXT("▲") : TEXT("^"), Look::Strong);
    }
    if (m_scroll + m_area.Height < RowsOf(m_places))
    {
        Write(column, m_area.Top + m_area.Height - 1, isUnicode ? TEXT("▼") : TEXT("v"), Look::Strong);
    }
}
