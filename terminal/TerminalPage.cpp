#include "terminal/TerminalPage.h"

#include <algorithm>

TerminalPage::TerminalPage(PageTemplate page, ISheetScreen &screen) : PageState(std::move(page)), m_screen(screen)
{
}

void TerminalPage::SetText(UINT id, const WideText &text)
{
    PageState::SetText(id, text);
    const size_t control = Find(id);
    m_caret = control != NoControl && KindOf(control) == ControlKind::ComboBox ? text.size() : m_caret;
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
