#include "settings/PageState.h"

#include <algorithm>

namespace
{
// The text of a control without the marks for access keys and links.
WideText ShownText(const TemplateControl &control)
{
    WideText text = WithoutLinkMarks(control.Text);
    const bool marksKeys = control.Kind != ControlKind::Link;
    for (size_t at = text.find(u'&'); marksKeys && at != text.npos; at = text.find(u'&', at + 1))
    {
        text.erase(at, 1);
    }
    return text;
}
} // namespace

WideText WithoutLinkMarks(WideText text)
{
    for (const WideView mark : {WideView(TEXT("<a>")), WideView(TEXT("</a>"))})
    {
        if (const size_t at = text.find(mark); at != text.npos)
        {
            text.erase(at, mark.size());
        }
    }
    return text;
}

PageState::PageState(PageTemplate page) : m_template(std::move(page)), m_states(m_template.Controls.size())
{
    for (const TemplateControl &control : m_template.Controls)
    {
        m_texts.push_back(ShownText(control));
    }
}

size_t PageState::Find(UINT id) const
{
    const auto found = std::ranges::find(m_template.Controls, id, &TemplateControl::Id);
    return found == m_template.Controls.end() ? NoControl
                                              : static_cast<size_t>(found - m_template.Controls.begin());
}

size_t PageState::GroupStart(size_t radio) const
{
    while (radio > 0 && !m_template.Controls[radio].OpensGroup && KindOf(radio - 1) == ControlKind::RadioButton)
    {
        --radio;
    }
    return radio;
}

size_t PageState::GroupEnd(size_t radio) const
{
    size_t end = radio + 1;
    while (end < m_states.size() && KindOf(end) == ControlKind::RadioButton &&
           !m_template.Controls[end].OpensGroup)
    {
        ++end;
    }
    return end;
}

void PageState::SetCheck(UINT id, UINT32 state)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].Check = state != 0;
    }
}

UINT32 PageState::Check(UINT id)
{
    const size_t control = Find(id);
    return control == NoControl ? 0 : m_states[control].Check;
}

void PageState::SetRadio(UINT firstId, UINT32 position)
{
    const size_t first = Find(firstId);
    for (size_t i = first; first != NoControl && i < GroupEnd(first); ++i)
    {
        m_states[i].Check = i - first == position;
    }
}

UINT32 PageState::Radio(UINT firstId)
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

void PageState::SetText(UINT id, const WideText &text)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_texts[control] = text;
    }
}

WideText PageState::Text(UINT id)
{
    const size_t control = Find(id);
    return control == NoControl ? WideText() : m_texts[control];
}

void PageState::Enable(UINT id, bool isEnabled)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].IsEnabled = isEnabled;
    }
}

void PageState::AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels)
{
    if (const size_t control = Find(id); control != NoControl)
    {
        m_states[control].List.push_back({text, pixels});
    }
}
