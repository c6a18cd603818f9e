#include "tests/settings/FakePageControls.h"

#include <gtest/gtest.h>

FakePageControls::FakePageControls(UINT templateId)
{
    auto page = ReadPageTemplate(templateId);
    EXPECT_TRUE(page) << "no template " << templateId;
    m_template = page.value_or(PageTemplate{});
    for (const TemplateControl &control : m_template.Controls)
    {
        m_texts[control.Id] = control.Text;
    }
}

const TemplateControl &FakePageControls::Known(UINT id, ControlKind kind)
{
    static const TemplateControl None{};
    for (const TemplateControl &control : m_template.Controls)
    {
        if (control.Id == id)
        {
            EXPECT_EQ(control.Kind, kind) << "control " << id;
            return control;
        }
    }
    ADD_FAILURE() << "no control " << id;
    return None;
}

std::vector<UINT> FakePageControls::GroupOf(UINT firstId)
{
    EXPECT_TRUE(Known(firstId, ControlKind::RadioButton).OpensGroup) << "control " << firstId;
    std::vector<UINT> group;
    for (const TemplateControl &control : m_template.Controls)
    {
        if (group.empty() ? control.Id != firstId : control.OpensGroup)
        {
            if (!group.empty())
            {
                break;
            }
            continue;
        }
        if (control.Kind == ControlKind::RadioButton)
        {
            group.push_back(control.Id);
        }
    }
    return group;
}

void FakePageControls::SetCheck(UINT id, UINT32 state)
{
    Known(id, ControlKind::CheckBox);
    EXPECT_LE(state, 2u);
    m_checks[id] = state != 0;
}

UINT32 FakePageControls::Check(UINT id)
{
    Known(id, ControlKind::CheckBox);
    return m_checks[id];
}

void FakePageControls::SetRadio(UINT firstId, UINT32 position)
{
    m_radios[firstId] = position < GroupOf(firstId).size() ? position : NoRadio;
}

UINT32 FakePageControls::Radio(UINT firstId)
{
    GroupOf(firstId);
    return m_radios.contains(firstId) ? m_radios[firstId] : NoRadio;
}

void FakePageControls::SetText(UINT id, const WideText &text)
{
    EXPECT_TRUE(m_texts.contains(id)) << "no control " << id;
    Record.Add("text " + std::to_string(id) + " " + Narrow(text));
    m_texts[id] = text;
}

WideText FakePageControls::Text(UINT id)
{
    EXPECT_TRUE(m_texts.contains(id)) << "no control " << id;
    return m_texts[id];
}

void FakePageControls::Enable(UINT id, bool isEnabled)
{
    EXPECT_TRUE(m_texts.contains(id)) << "no control " << id;
    Record.Add("enable " + std::to_string(id) + (isEnabled ? " 1" : " 0"));
    if (isEnabled)
    {
        Disabled.erase(id);
    }
    else
    {
        Disabled.insert(id);
    }
}

void FakePageControls::AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels)
{
    Known(id, ControlKind::ComboBox);
    List.push_back({text, pixels});
}

void FakePageControls::PutCaretAtEnd(UINT id)
{
    Known(id, ControlKind::Edit);
    Record.Add("caret at end " + std::to_string(id));
}

void FakePageControls::Focus(UINT id)
{
    Record.Add("focus " + std::to_string(id));
}

void FakePageControls::Repaint(UINT id)
{
    Record.Add("repaint " + std::to_string(id));
}

void FakePageControls::Beep()
{
    Record.Add("beep");
}
