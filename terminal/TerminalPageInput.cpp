#include "terminal/TerminalPage.h"
#include "terminal/TerminalText.h"

#include <algorithm>

namespace
{
size_t StepWithin(size_t from, int direction, size_t first, size_t end)
{
    const size_t count = end - first;
    return first + (from - first + count + static_cast<size_t>(direction)) % count;
}
} // namespace

TerminalPage::Response TerminalPage::Choose(size_t control)
{
    switch (KindOf(control))
    {
    case ControlKind::CheckBox:
        m_states[control].Check ^= 1;
        break;
    case ControlKind::RadioButton:
        for (size_t i = GroupStart(control); i < GroupEnd(control); ++i)
        {
            m_states[i].Check = i == control;
        }
        break;
    case ControlKind::Link:
        break;
    default:
        return {};
    }
    return {true, m_template.Controls[control].Id};
}

TerminalPage::Response TerminalPage::MoveInGroup(int direction)
{
    const size_t button = StepWithin(m_focus, direction, GroupStart(m_focus), GroupEnd(m_focus));
    FocusOn(button);
    return Choose(button);
}

TerminalPage::Response TerminalPage::Press(const Input &input)
{
    if (m_isListOpen)
    {
        return PressInList(input);
    }
    if (m_focus == NoControl || !m_states[m_focus].IsEnabled)
    {
        return {};
    }
    const ControlKind kind = KindOf(m_focus);
    if (kind == ControlKind::ComboBox)
    {
        return EditText(input);
    }
    const bool isBack = input.What == Key::Up || input.What == Key::Left;
    if (isBack || input.What == Key::Down || input.What == Key::Right)
    {
        if (kind == ControlKind::RadioButton)
        {
            return MoveInGroup(isBack ? -1 : 1);
        }
        return {isBack ? FocusPrevious() : FocusNext(), {}};
    }
    if (input.What == Key::Character && input.Character == U' ')
    {
        return Choose(m_focus);
    }
    return input.What == Key::Enter && kind == ControlKind::Link ? Choose(m_focus) : Response{};
}

TerminalPage::Response TerminalPage::EditText(const Input &input)
{
    const WideText &text = m_texts[m_focus];
    const bool wasAllSelected = m_isAllSelected;
    m_isAllSelected = false;
    switch (input.What)
    {
    case Key::Down:
    case Key::OpenList:
        OpenList();
        break;
    case Key::Up:
        return {FocusPrevious(), {}};
    case Key::Left:
        m_caret = CharacterBefore(text, m_caret);
        break;
    case Key::Right:
        m_caret = CharacterBehind(text, m_caret);
        break;
    case Key::Home:
        m_caret = 0;
        break;
    case Key::End:
        m_caret = text.size();
        break;
    case Key::EraseLine:
        Replace(0, text.size(), {});
        break;
    case Key::Backspace:
        Replace(wasAllSelected ? 0 : CharacterBefore(text, m_caret), wasAllSelected ? text.size() : m_caret, {});
        break;
    case Key::Delete:
        Replace(wasAllSelected ? 0 : m_caret, wasAllSelected ? text.size() : CharacterBehind(text, m_caret), {});
        break;
    case Key::Character:
    {
        WideText typed;
        AppendCharacter(typed, input.Character);
        Replace(wasAllSelected ? 0 : m_caret, wasAllSelected ? text.size() : m_caret, typed);
        break;
    }
    default:
        m_isAllSelected = wasAllSelected;
        return {};
    }
    return {true, {}};
}

// Puts text in place of what lies between the indices, and the caret behind it.
void TerminalPage::Replace(size_t first, size_t end, const WideText &text)
{
    m_texts[m_focus].replace(first, end - first, text);
    m_caret = first + text.size();
}

void TerminalPage::OpenList()
{
    const auto &list = m_states[m_focus].List;
    const auto found = std::ranges::find(list, m_texts[m_focus], &ListEntry::Text);
    m_listChoice = found == list.end() ? 0 : static_cast<size_t>(found - list.begin());
    m_isListOpen = !list.empty();
}

void TerminalPage::CloseList(bool isTaken)
{
    if (isTaken)
    {
        m_texts[m_focus] = m_states[m_focus].List[m_listChoice].Text;
        m_caret = m_texts[m_focus].size();
    }
    m_isAllSelected = true;
    m_isListOpen = false;
}

TerminalPage::Response TerminalPage::PressInList(const Input &input)
{
    const size_t last = m_states[m_focus].List.size() - 1;
    switch (input.What)
    {
    case Key::Up:
    case Key::WheelUp:
        m_listChoice -= m_listChoice > 0;
        break;
    case Key::Down:
    case Key::WheelDown:
        m_listChoice += m_listChoice < last;
        break;
    case Key::Home:
    case Key::PageUp:
        m_listChoice = 0;
        break;
    case Key::End:
    case Key::PageDown:
        m_listChoice = last;
        break;
    case Key::Enter:
        CloseList(true);
        break;
    case Key::Escape:
    case Key::OpenList:
        CloseList(false);
        break;
    case Key::Tab:
    case Key::BackTab:
        CloseList(true);
        return {};
    case Key::Lost:
    case Key::PreviousPage:
    case Key::NextPage:
        CloseList(false);
        return {};
    default:
        break;
    }
    return {true, {}};
}

TerminalPage::Response TerminalPage::Click(int column, int row)
{
    if (m_isListOpen)
    {
        const int line = row - m_listArea.Top;
        const bool isInside = line >= 0 && line < m_listArea.Height && column >= m_listArea.Left &&
                              column < m_listArea.Left + m_listArea.Width;
        m_listChoice = isInside ? m_listTop + static_cast<size_t>(line) : m_listChoice;
        CloseList(isInside);
        return {true, {}};
    }
    if (!IsOnScreen(row))
    {
        return {};
    }
    const int pageRow = row - m_area.Top + m_scroll;
    const int pageColumn = column - m_area.Left;
    for (size_t i = 0; i < m_places.size(); ++i)
    {
        const ControlPlace &place = m_places[i];
        const bool isHit = pageRow >= place.Row && pageRow < place.Row + place.Height &&
                           pageColumn >= place.Column && pageColumn < place.Column + place.Width;
        const bool isText = KindOf(i) == ControlKind::Label || KindOf(i) == ControlKind::Rule;
        if (!isHit || isText || !m_states[i].IsEnabled)
        {
            continue;
        }
        const Response response = Choose(i);
        FocusOn(i);
        if (KindOf(i) == ControlKind::ComboBox && pageColumn >= place.Column + place.Width - 3)
        {
            OpenList();
        }
        return {true, response.Clicked};
    }
    return {};
}
