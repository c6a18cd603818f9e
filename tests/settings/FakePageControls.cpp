#include "tests/settings/FakePageControls.h"

FakePageControls::FakePageControls(UINT templateId) : PageState(ReadPageTemplate(templateId).value()) {}

void FakePageControls::SetText(UINT id, const WideText &text)
{
    Record.Add("text " + std::to_string(id) + " " + Narrow(text));
    PageState::SetText(id, text);
}

void FakePageControls::Enable(UINT id, bool isEnabled)
{
    Record.Add("enable " + std::to_string(id) + (isEnabled ? " 1" : " 0"));
    PageState::Enable(id, isEnabled);
}

std::set<UINT> FakePageControls::Disabled() const
{
    std::set<UINT> disabled;
    for (size_t i = 0; i < m_states.size(); ++i)
    {
        if (!m_states[i].IsEnabled)
        {
            disabled.insert(m_template.Controls[i].Id);
        }
    }
    return disabled;
}

std::vector<std::string> FakePageControls::List() const
{
    std::vector<std::string> entries;
    for (const State &state : m_states)
    {
        for (const ListEntry &entry : state.List)
        {
            entries.push_back(Narrow(entry.Text) + (entry.Pixels ? "=" + std::to_string(*entry.Pixels) : ""));
        }
    }
    return entries;
}
