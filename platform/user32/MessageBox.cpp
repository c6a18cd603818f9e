// Message boxes in the terminal, of the kinds that are shown: OK, and OK or Cancel. Without a terminal the text is
// written to standard error, and the result is the more cautious answer.
#include "terminal/Dialog.h"

#include <windows.h>

namespace
{
DialogIcon IconOf(UINT style)
{
    switch (style & MB_ICONMASK)
    {
    case MB_ICONHAND:
        return DialogIcon::Error;
    case MB_ICONASTERISK:
        return DialogIcon::Information;
    default:
        return DialogIcon::None;
    }
}

DialogPage PageOf(const WCHAR *text, const WCHAR *caption, UINT style)
{
    DialogPage page;
    page.Title = caption != nullptr ? caption : u"Error";
    page.Icon = IconOf(style);
    page.Content = text != nullptr ? text : u"";
    page.Buttons.push_back({IDOK, WordOfButton(IDOK)});
    if ((style & MB_TYPEMASK) == MB_OKCANCEL)
    {
        page.Buttons.push_back({IDCANCEL, WordOfButton(IDCANCEL)});
    }
    page.DefaultButton = IDOK;
    page.CancelButton = page.LostButton = page.Buttons.back().Id;
    return page;
}
} // namespace

int WINAPI MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style)
{
    if ((style & (MB_TYPEMASK | MB_DEFMASK)) > MB_OKCANCEL)
    {
        SetLastError(ERROR_INVALID_MSGBOX_STYLE);
        return 0;
    }
    try
    {
        return RunDialog(PageOf(text, caption, style));
    }
    catch (...)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}
