// The controls of a page without windows: made from the page's template, they hold what the controls of a dialog
// would hold after the same calls. Who shows them adds focus, keys and drawing.
#pragma once

#include "settings/PageControls.h"
#include "settings/PageTemplate.h"

#include <vector>

class PageState : public IPageControls
{
public:
    explicit PageState(PageTemplate page);

    // A call for a control that the template doesn't have does nothing. Boxes have two states.
    void SetCheck(UINT id, UINT32 state) override;
    UINT32 Check(UINT id) override;
    void SetRadio(UINT firstId, UINT32 position) override;
    UINT32 Radio(UINT firstId) override;
    void SetText(UINT id, const WideText &text) override;
    WideText Text(UINT id) override;
    void Enable(UINT id, bool isEnabled) override;
    void AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels) override;

protected:
    struct ListEntry
    {
        WideText Text;
        std::optional<UINT32> Pixels;
    };
    struct State
    {
        bool IsEnabled = true;
        UINT32 Check = 0; // of a box or a radio button
        std::vector<ListEntry> List;
    };

    ~PageState() = default;

    static constexpr size_t NoControl = static_cast<size_t>(-1);

    size_t Find(UINT id) const;
    ControlKind KindOf(size_t control) const { return m_template.Controls[control].Kind; }

    // The first radio button of a group, and the control behind its last.
    size_t GroupStart(size_t radio) const;
    size_t GroupEnd(size_t radio) const;

    const PageTemplate m_template;
    std::vector<State> m_states;
    std::vector<WideText> m_texts; // without marks for access keys and links
};

// The text of a link without the marks around what can be clicked.
WideText WithoutLinkMarks(WideText text);
