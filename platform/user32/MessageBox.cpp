// Message boxes in the terminal. Without a terminal the text is written to standard error, and the result
// is the box's most cautious answer.
#include "platform/terminal/ButtonWords.h"
#include "platform/terminal/TerminalDialog.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace
{
struct BoxKind
{
    std::vector<int> buttons;
    int cancel; // the result if the user closes the box; 0 if it can't be closed
    int lost;   // the result without a terminal
};

// `number` is the lowest four bits of the style.
const BoxKind &KindOf(UINT number)
{
    static const BoxKind Kinds[] = {
        {{IDOK}, IDOK, IDOK},
        {{IDOK, IDCANCEL}, IDCANCEL, IDCANCEL},
        {{IDABORT, IDRETRY, IDIGNORE}, 0, IDABORT},
        {{IDYES, IDNO, IDCANCEL}, IDCANCEL, IDCANCEL},
        {{IDYES, IDNO}, 0, IDNO},
        {{IDRETRY, IDCANCEL}, IDCANCEL, IDCANCEL},
        {{IDCANCEL, IDTRYAGAIN, IDCONTINUE}, IDCANCEL, IDCANCEL},
    };
    static const BoxKind NoWord{};
    return number < std::size(Kinds) ? Kinds[number] : NoWord;
}

DialogIcon IconOf(UINT style)
{
    switch (style & MB_ICONMASK)
    {
    case MB_ICONHAND:
        return DialogIcon::Error;
    case MB_ICONQUESTION:
        return DialogIcon::Question;
    case MB_ICONEXCLAMATION:
        return DialogIcon::Warning;
    case MB_ICONASTERISK:
        return DialogIcon::Information;
    default:
        return DialogIcon::None;
    }
}

// Lets every button close the box.
class BoxListener final : public DialogListener
{
public:
    bool ButtonClicked(int) override { return true; }
    void RadioButtonClicked(int) override {}
    void CheckBoxClicked(bool) override {}
    void ExpandoClicked(bool) override {}
    void LinkClicked(const std::u16string &) override {}
    void TimerPassed() override {}
};

void Describe(DialogPage &page, const WCHAR *text, const WCHAR *caption, UINT style, const BoxKind &kind)
{
    page.title = caption != nullptr ? caption : u"Error";
    page.icon = IconOf(style);
    page.content = text != nullptr ? text : u"";
    for (const int id : kind.buttons)
    {
        page.buttons.push_back({id, WordOfButton(id)});
    }
    const UINT byDefault = (style & MB_DEFMASK) >> 8;
    page.defaultButton = kind.buttons[byDefault < kind.buttons.size() ? byDefault : 0];
    page.cancelButton = kind.cancel;
    page.lostButton = kind.lost;
}
} // namespace

int WINAPI MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style)
{
    const BoxKind &kind = KindOf(style & MB_TYPEMASK);
    if (kind.buttons.empty())
    {
        SetLastError(ERROR_INVALID_MSGBOX_STYLE);
        return 0;
    }
    try
    {
        TerminalDialog dialog;
        dialog.Change([&](DialogPage &page) { Describe(page, text, caption, style, kind); });
        BoxListener listener;
        return dialog.Run(listener, false);
    }
    catch (...)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}
