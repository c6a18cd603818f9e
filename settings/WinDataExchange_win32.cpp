#include "settings/WinDataExchange_win32.h"

namespace
{
// Calls visit with each radio button of the group and its position.
template <class Visit>
void ForEachRadio(HWND first, Visit &&visit)
{
    UINT32 position = 0;
    for (HWND control = first; control != nullptr; control = GetWindow(control, GW_HWNDNEXT))
    {
        if (control != first && (GetWindowLongPtrW(control, GWL_STYLE) & WS_GROUP))
        {
            return;
        }
        if (SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON)
        {
            visit(control, position++);
        }
    }
}
} // namespace

void CWinDataExchange::SetCheck(UINT id, UINT32 state)
{
    SendMessageW(Control(id), BM_SETCHECK, state, 0);
}

UINT32 CWinDataExchange::Check(UINT id)
{
    return static_cast<UINT32>(SendMessageW(Control(id), BM_GETCHECK, 0, 0));
}

void CWinDataExchange::SetRadio(UINT firstId, UINT32 position)
{
    ForEachRadio(Control(firstId), [position](HWND button, UINT32 at) {
        SendMessageW(button, BM_SETCHECK, at == position ? BST_CHECKED : BST_UNCHECKED, 0);
    });
}

UINT32 CWinDataExchange::Radio(UINT firstId)
{
    UINT32 checked = NoRadio;
    ForEachRadio(Control(firstId), [&checked](HWND button, UINT32 at) {
        if (SendMessageW(button, BM_GETCHECK, 0, 0) != BST_UNCHECKED)
        {
            checked = at;
        }
    });
    return checked;
}

void CWinDataExchange::SetText(UINT id, const WideText &text)
{
    SetDlgItemTextW(m_dialog, static_cast<int>(id), text.c_str());
}

WideText CWinDataExchange::Text(UINT id)
{
    const HWND control = Control(id);
    WideText text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, 0);
    text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

void CWinDataExchange::Enable(UINT id, bool isEnabled)
{
    EnableWindow(Control(id), isEnabled);
}

void CWinDataExchange::AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels)
{
    const HWND list = Control(id);
    const LRESULT entry = SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    if (entry >= 0 && pixels)
    {
        SendMessageW(list, CB_SETITEMDATA, static_cast<WPARAM>(entry), *pixels);
    }
}

void CWinDataExchange::PutCaretAtEnd(UINT id)
{
    const HWND control = Control(id);
    const int length = GetWindowTextLengthW(control);
    SendMessageW(control, EM_SETSEL, static_cast<WPARAM>(length), length);
}

void CWinDataExchange::Focus(UINT id)
{
    SetFocus(Control(id));
}

void CWinDataExchange::Repaint(UINT id)
{
    UpdateWindow(Control(id));
}

void CWinDataExchange::Beep()
{
    MessageBeep(0xFFFFFFFF);
}
