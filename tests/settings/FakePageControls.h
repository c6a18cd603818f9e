// The controls of a page without a screen, with a record of the calls.
#pragma once

#include "settings/PageState.h"
#include "tests/doubles/CallRecord.h"

#include <set>

class FakePageControls final : public PageState
{
public:
    explicit FakePageControls(UINT templateId);

    void SetText(UINT id, const WideText &text) override;
    void Enable(UINT id, bool isEnabled) override;
    void PutCaretAtEnd(UINT id) override { Record.Add("caret at end " + std::to_string(id)); }
    void Focus(UINT id) override { Record.Add("focus " + std::to_string(id)); }
    void Repaint(UINT id) override { Record.Add("repaint " + std::to_string(id)); }
    void Beep() override { Record.Add("beep"); }

    std::set<UINT> Disabled() const;

    // The texts of the combo box's entries, each with its pixels: "800 px=800".
    std::vector<std::string> List() const;

    // "text 205 ...", "focus 222", "enable 210 0", "beep" ... in order; other fakes may write into it too.
    CallRecord Record;
};
