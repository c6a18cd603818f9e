// The controls of one page of the settings sheet on a terminal: keeps their state and the focus, answers keys
// and clicks, and draws them.
#pragma once

#include "settings/PageState.h"
#include "terminal/PageLayout.h"
#include "terminal/SheetScreen.h"

#include <vector>

struct ScreenArea
{
    int Left;
    int Top;
    int Width;
    int Height;
};

class TerminalPage final : public PageState
{
public:
    // screen must outlive this object.
    TerminalPage(PageTemplate page, ISheetScreen &screen);

    void SetText(UINT id, const WideText &text) override;
    void PutCaretAtEnd(UINT id) override;
    void Focus(UINT id) override;
    void Repaint(UINT id) override;
    void Beep() override;

    // Move the focus in tab order: over enabled controls that take it; of a radio group, the checked button.
    // Return false, and leave the focus, if there is no further control in that direction.
    bool FocusFirst();
    bool FocusLast();
    bool FocusNext();
    bool FocusPrevious();

    // The identifier of the control with the focus, or TemplateControl::NoId.
    UINT Focused() const;

    struct Response
    {
        bool IsUsed = false;         // the key or click meant something to a control
        std::optional<UINT> Clicked; // the button or link that was clicked; it already shows its new state
    };

    // Hands a key to the control with the focus.
    Response Press(const Input &input);

    // Hands over a click, in cells of the screen as last drawn.
    Response Click(int column, int row);

    // While the list is open, it must get all keys and clicks first.
    bool HasOpenList() const { return m_isListOpen; }

    void Scroll(int rows);
    void Draw(const ScreenArea &area, bool hasFocus);

private:
    bool TakesFocus(size_t control) const;
    bool FocusFrom(size_t start, int direction);
    void FocusOn(size_t control);
    Response Choose(size_t control);
    Response MoveInGroup(int direction);
    Response EditText(const Input &input);
    void Replace(size_t first, size_t end, const WideText &text);
    Response PressInList(const Input &input);
    void OpenList();
    void CloseList(bool isTaken);

    void ShowFocus();
    void DrawControl(size_t control, bool hasFocus);
    void DrawMark(size_t control, int column, int row, bool hasFocus);
    void DrawComboBox(size_t control, int column, int row, bool hasFocus);
    void DrawEdit(const ControlPlace &place, int column, int row, bool hasFocus);
    void DrawList();
    void DrawScrollMarks();
    bool IsOnScreen(int row) const { return row >= m_area.Top && row < m_area.Top + m_area.Height; }
    void Write(int column, int row, WideView text, Look look);

    ISheetScreen &m_screen;
    std::vector<ControlPlace> m_places;
    ScreenArea m_area{};
    size_t m_focus = NoControl;
    size_t m_caret = 0;           // index in the combo box's text
    bool m_isAllSelected = false; // typing replaces the text
    int m_scroll = 0;
    bool m_followsFocus = true;
    bool m_isListOpen = false;
    size_t m_listChoice = 0;
    ScreenArea m_listArea{};
    size_t m_listTop = 0;
};
