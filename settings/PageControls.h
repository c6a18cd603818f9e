// The controls of one page of the settings sheet, as the page's logic sees them. It is implemented over dialog
// controls and over the terminal, so that the rules of a page exist once.
//
// Controls are named by the identifiers of resources/resource.h; settings/PageTemplate.h reads which ones a
// page has, their kinds and texts. All calls are made on the thread that shows the sheet, within a call of a
// SettingsPage, and may throw E_OUTOFMEMORY. An implementation without a caret, focus or painting of its own
// does nothing in those operations.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <optional>

class IPageControls
{
public:
    // A check box: 0 clear, 1 checked, 2 undetermined. A box that can't show 2 shows it as checked, and
    // is read as what it shows.
    virtual void SetCheck(UINT id, UINT32 state) = 0;
    virtual UINT32 Check(UINT id) = 0;

    // A group of radio buttons, named by its first: checks the one at that position, counted from 0, and
    // clears the others; a position beyond the group clears all.
    virtual void SetRadio(UINT firstId, UINT32 position) = 0;

    // The position of the checked button, or NoRadio.
    virtual UINT32 Radio(UINT firstId) = 0;

    // The text of a label, an edit control or the edit field of a combo box, of any length.
    virtual void SetText(UINT id, const WideText &text) = 0;
    virtual WideText Text(UINT id) = 0;

    // A disabled control is greyed, still shows its state, and can't be changed by the user.
    virtual void Enable(UINT id, bool isEnabled) = 0;

    // Appends an entry to the list of a combo box, with pixels as its item data.
    virtual void AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels) = 0;

    // Puts the caret of an edit control behind its last character.
    virtual void PutCaretAtEnd(UINT id) = 0;
    virtual void Focus(UINT id) = 0;

    // Draws a control in its present state before returning.
    virtual void Repaint(UINT id) = 0;

    // The system's plain beep.
    virtual void Beep() = 0;

    static constexpr UINT32 NoRadio = 0xFFFFFFFF;

protected:
    ~IPageControls() = default;
};
