#include "settings/TerminalPage_terminal.h"

#include "settings/CellText_terminal.h"

#include <algorithm>

namespace
{
void Erase(WideText &text, WideView part)
{
    if (const size_t at = text.find(part); at != text.npos)
    {
        text.erase(at, part.size());
    }
}

// The text of a control without the marks for access keys and links.
WideText ShownText(const TemplateControl &control)
{
    WideText text = control.Text;
    if (control.Kind == ControlKind::Link)
    {
        Erase(text, TEXT("<a>"));
        Erase(text, TEXT("</a>"));
        return text;
    }
    for (size_t at = text.find(u'&'); at != text.npos; at = text.find(u'&', at + 1))
    {
        text.erase(at, 1);
    }
    return text;
}

size_t StepWithin(size_t from, int direction, size_t first, size_t end)
{
    const size_t count = end - first;
    return first + (from - first + count + static_cast<size_t>(direction)) % count;
}
} // namespace

TerminalPage::TerminalPage(PageTemplate page, ISheetScreen &screen)
    : m_template(std::move(page)), m_screen(screen), m_states(m_template.Controls.size())
{
    for (const TemplateControl &control : m_template.Controls)
    {
        m_texts.push_back(ShownText(control));
    }
}

size_t TerminalPage::Find(UINT id) const
{
    const auto found = std::ranges::find(m_template.Controls, id, &TemplateControl::Id);
    return found == m_template.Controls.end() ? NoControl
                                              : static_cast<size_t>(found - m_template.Controls.begin());
}

size_t TerminalPage::GroupStart(size_t radio) const
{
    while (radio > 0 && !m_template.Controls[radio].OpensGroup && KindOf(radio - 1) == ControlKind::RadioButton)
    {
        --radio;
    }
    return radio;
}

size_t TerminalPage::GroupEnd(size_t radio) const
{
    size_t end = radio + 1;
    while (end < m_states.size() && KindOf(end) == ControlKind::RadioButton &&
           !m_template.Controls[end].OpensGroup)
    {
        ++end;
    }
    return end;
}

void TerminalPage::SetCheck(UINT id, UINT32 state)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].Check = state != 0;
    }
}

UINT32 TerminalPage::Check(UINT id)
{
    const size_t control = Find(id);
    return control == NoControl ? 0 : m_states[control].Check;
}

void TerminalPage::SetRadio(UINT firstId, UINT32 position)
{
    const size_t first = Find(firstId);
    for (size_t i = first; first != NoControl && i < GroupEnd(first); ++i)
    {
        m_states[i].Check = i - first == position;
    }
}

UINT32 TerminalPage::Radio(UINT firstId)
{
    const size_t first = Find(firstId);
    for (size_t i = first; first != NoControl && i < GroupEnd(first); ++i)
    {
        if (m_states[i].Check != 0)
        {
            return static_cast<UINT32>(i - first);
        }
    }
    return NoRadio;
}

void TerminalPage::SetText(UINT id, const WideText &text)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_texts[control] = text;
        m_caret = KindOf(control) == ControlKind::ComboBox ? text.size() : m_caret;
    }
}

WideText TerminalPage::Text(UINT id)
{
    const size_t control = Find(id);
    return control == NoControl ? WideText() : m_texts[control];
}

void TerminalPage::Enable(UINT id, bool isEnabled)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].IsEnabled = isEnabled;
    }
}

void TerminalPage::AddListEntry(UINT id, const WideText &text, std::optional<UINT32>)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].List.push_back(text);
    }
}

// The account text is always shown whole and has no caret.
void TerminalPage::PutCaretAtEnd(UINT) {}

void TerminalPage::Focus(UINT id)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        FocusOn(control);
    }
}

// The sheet redraws the whole page itself.
void TerminalPage::Repaint(UINT) {}

void TerminalPage::Beep()
{
    m_screen.Beep();
}

bool TerminalPage::TakesFocus(size_t control) const
{
    const State &state = m_states[control];
    switch (KindOf(control))
    {
    case ControlKind::Label:
    case ControlKind::Rule:
        return false;
    case ControlKind::RadioButton:
    {
        const auto isChecked = [](const State &button) { return button.Check != 0; };
        const size_t start = GroupStart(control);
        const bool isAnyChecked =
            std::any_of(m_states.begin() + static_cast<std::ptrdiff_t>(start),
                        m_states.begin() + static_cast<std::ptrdiff_t>(GroupEnd(control)), isChecked);
        return state.IsEnabled && (isAnyChecked ? state.Check != 0 : control == start);
    }
    default:
        return state.IsEnabled && m_template.Controls[control].TakesFocus;
    }
}

bool TerminalPage::FocusFrom(size_t start, int direction)
{
    for (size_t i = start; i < m_states.size(); i += static_cast<size_t>(direction))
    {
        if (TakesFocus(i))
        {
            FocusOn(i);
            return true;
        }
    }
    return false;
}

void TerminalPage::FocusOn(size_t control)
{
    m_focus = control;
    m_followsFocus = true;
    if (KindOf(control) == ControlKind::ComboBox)
    {
        m_isAllSelected = true;
        m_caret = m_texts[control].size();
    }
}

bool TerminalPage::FocusFirst()
{
    return FocusFrom(0, 1);
}

bool TerminalPage::FocusLast()
{
    return FocusFrom(m_states.size() - 1, -1);
}

bool TerminalPage::FocusNext()
{
    return m_focus == NoControl ? FocusFirst() : FocusFrom(m_focus + 1, 1);
}

bool TerminalPage::FocusPrevious()
{
    return m_focus != NoControl && FocusFrom(m_focus - 1, -1);
}

UINT TerminalPage::Focused() const
{
    return m_focus == NoControl ? TemplateControl::NoId : m_template.Controls[m_focus].Id;
}

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

TerminalPage::Response TerminalPage::Press(const ScreenInput &input)
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
    const bool isBack = input.Key == SheetKey::Up || input.Key == SheetKey::Left;
    if (isBack || input.Key == SheetKey::Down || input.Key == SheetKey::Right)
    {
        if (kind == ControlKind::RadioButton)
        {
            return MoveInGroup(isBack ? -1 : 1);
        }
        return {isBack ? FocusPrevious() : FocusNext(), {}};
    }
    if (input.Key == SheetKey::Character && input.Character == U' ')
    {
        return Choose(m_focus);
    }
    return input.Key == SheetKey::Enter && kind == ControlKind::Link ? Choose(m_focus) : Response{};
}

TerminalPage::Response TerminalPage::EditText(const ScreenInput &input)
{
    WideText &text = m_texts[m_focus];
    const bool wasAllSelected = m_isAllSelected;
    m_isAllSelected = false;
    switch (input.Key)
    {
    case SheetKey::Down:
    case SheetKey::OpenList:
        OpenList();
        return {true, {}};
    case SheetKey::Up:
        return {FocusPrevious(), {}};
    case SheetKey::Left:
        m_caret = CharacterBefore(text, m_caret);
        return {true, {}};
    case SheetKey::Right:
        m_caret = CharacterBehind(text, m_caret);
        return {true, {}};
    case SheetKey::Home:
        m_caret = 0;
        return {true, {}};
    case SheetKey::End:
        m_caret = text.size();
        return {true, {}};
    case SheetKey::EraseLine:
        text.clear();
        m_caret = 0;
        return {true, {}};
    case SheetKey::Backspace:
    case SheetKey::Delete:
        if (wasAllSelected)
        {
            text.clear();
            m_caret = 0;
        }
        else
        {
            const size_t other =
                input.Key == SheetKey::Delete ? CharacterBehind(text, m_caret) : CharacterBefore(text, m_caret);
            const size_t first = std::min(other, m_caret);
            text.erase(first, std::max(other, m_caret) - first);
            m_caret = first;
        }
        return {true, {}};
    case SheetKey::Character:
    {
        if (wasAllSelected)
        {
            text.clear();
            m_caret = 0;
        }
        WideText typed;
        if (input.Character > 0xFFFF)
        {
            typed += static_cast<WCHAR>(0xD800 + ((input.Character - 0x10000) >> 10));
            typed += static_cast<WCHAR>(0xDC00 + ((input.Character - 0x10000) & 0x3FF));
        }
        else
        {
            typed += static_cast<WCHAR>(input.Character);
        }
        text.insert(m_caret, typed);
        m_caret += typed.size();
        return {true, {}};
    }
    default:
        m_isAllSelected = wasAllSelected;
        return {};
    }
}

void TerminalPage::OpenList()
{
    const auto &list = m_states[m_focus].List;
    const auto found = std::ranges::find(list, m_texts[m_focus]);
    m_listChoice = found == list.end() ? 0 : static_cast<size_t>(found - list.begin());
    m_isListOpen = !list.empty();
}

void TerminalPage::CloseList(bool isTaken)
{
    if (isTaken)
    {
        m_texts[m_focus] = m_states[m_focus].List[m_listChoice];
        m_caret = m_texts[m_focus].size();
    }
    m_isAllSelected = true;
    m_isListOpen = false;
}

TerminalPage::Response TerminalPage::PressInList(const ScreenInput &input)
{
    const size_t last = m_states[m_focus].List.size() - 1;
    switch (input.Key)
    {
    case SheetKey::Up:
    case SheetKey::WheelUp:
        m_listChoice -= m_listChoice > 0;
        break;
    case SheetKey::Down:
    case SheetKey::WheelDown:
        m_listChoice += m_listChoice < last;
        break;
    case SheetKey::Home:
    case SheetKey::PageUp:
        m_listChoice = 0;
        break;
    case SheetKey::End:
    case SheetKey::PageDown:
        m_listChoice = last;
        break;
    case SheetKey::Enter:
        CloseList(true);
        break;
    case SheetKey::Escape:
    case SheetKey::OpenList:
        CloseList(false);
        break;
    case SheetKey::Tab:
    case SheetKey::BackTab:
        CloseList(true);
        return {};
    case SheetKey::Lost:
    case SheetKey::PreviousPage:
    case SheetKey::NextPage:
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
