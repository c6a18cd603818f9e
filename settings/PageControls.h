// The controls of one page of the settings sheet, as the page's logic sees them. Whoever shows a page,
// in windows or on a terminal, implements this; the rules of a page are then the same everywhere.
//
// Controls are named by the identifiers of resources/resource.h; settings/PageTemplate.h tells which a page
// has, of what kind and with which words. All calls are made on the thread that shows the sheet, within a
// call of a SettingsPage, and may throw E_OUTOFMEMORY. Where there is no caret, nothing to repaint or no
// focus to move, those operations do nothing.
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

    // What a label, an edit control or the edit field of a combo box says, of any length.
    virtual void SetText(UINT id, const WideText &text) = 0;
    virtual WideText Text(UINT id) = 0;

    // A control that isn't enabled shows its state, greyed, and can't be changed by the user.
    virtual void Enable(UINT id, bool isEnabled) = 0;

    // Appends an entry to the list of a combo box. pixels goes with it as its item data.
    virtual void AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels) = 0;

    // Puts the caret of an edit control behind its last character.
    virtual void PutCaretAtEnd(UINT id) = 0;
    virtual void Focus(UINT id) = 0;

    // Draws a control at once in its present state.
    virtual void Repaint(UINT id) = 0;

    // The system's plain beep.
    virtual void Beep() = 0;

    static constexpr UINT32 NoRadio = 0xFFFFFFFF;

protected:
    ~IPageControls() = default;
};
