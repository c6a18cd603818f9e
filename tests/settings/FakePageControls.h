// The controls of a page without a screen, made from the page's own template; they hold what a window would hold
// after the same calls. A call for a control that the template doesn't have fails the test.
#pragma once

#include "settings/PageControls.h"
#include "settings/PageTemplate.h"
#include "tests/doubles/CallRecord.h"

#include <map>
#include <set>
#include <string>
#include <vector>

class FakePageControls final : public IPageControls
{
public:
    explicit FakePageControls(UINT templateId);

    // The boxes of the pages have two states.
    void SetCheck(UINT id, UINT32 state) override;
    UINT32 Check(UINT id) override;
    void SetRadio(UINT firstId, UINT32 position) override;
    UINT32 Radio(UINT firstId) override;
    void SetText(UINT id, const WideText &text) override;
    WideText Text(UINT id) override;
    void Enable(UINT id, bool isEnabled) override;
    void AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels) override;
    void PutCaretAtEnd(UINT id) override;
    void Focus(UINT id) override;
    void Repaint(UINT id) override;
    void Beep() override;

    struct ListEntry
    {
        WideText Text;
        std::optional<UINT32> Pixels;
    };
    std::vector<ListEntry> List;
    std::set<UINT> Disabled;

    // "text 205 ...", "focus 222", "enable 210 0", "beep" ... in order; other fakes may write into it too.
    CallRecord Record;

private:
    const TemplateControl &Known(UINT id, ControlKind kind);
    std::vector<UINT> GroupOf(UINT firstId);

    PageTemplate m_template;
    std::map<UINT, UINT32> m_checks;
    std::map<UINT, UINT32> m_radios;
    std::map<UINT, WideText> m_texts;
};
