// TaskDialogIndirect in the terminal, as far as the plug-in's documents go: texts, an icon, expandable text, and
// buttons of its own beside those that every system has. A record with more is refused, so that no choice is lost
// without a word. The dialog has a window that isn't drawn: its handle identifies the dialog to the callback, which
// learns that the dialog was constructed, is shown and is gone.
#include "com/Hresult.h"
#include "com/WideText.h"
#include "terminal/Dialog.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>

namespace
{
struct CommonButton
{
    int Flag;
    int Id;
};

// In the order in which a task dialog shows them, after the caller's own buttons.
constexpr CommonButton CommonButtons[] = {
    {TDCBF_OK_BUTTON, IDOK},       {TDCBF_YES_BUTTON, IDYES},       {TDCBF_NO_BUTTON, IDNO},
    {TDCBF_RETRY_BUTTON, IDRETRY}, {TDCBF_CANCEL_BUTTON, IDCANCEL}, {TDCBF_CLOSE_BUTTON, IDCLOSE},
};

// A window has no place in a terminal, and whatever its document says it can be read there.
constexpr int FlagsWithoutMeaning = TDF_POSITION_RELATIVE_TO_WINDOW | TDF_CAN_BE_MINIMIZED;
constexpr int KnownFlags = FlagsWithoutMeaning | TDF_ALLOW_DIALOG_CANCELLATION | TDF_EXPANDED_BY_DEFAULT;

bool IsValid(const TASKDIALOGCONFIG *config)
{
    return config != nullptr && config->cbSize == sizeof(*config) &&
           (config->cButtons == 0 || config->pButtons != nullptr);
}

bool CanBeShown(const TASKDIALOGCONFIG &config)
{
    return (config.dwFlags & ~KnownFlags) == 0 && config.cRadioButtons == 0 &&
           config.pszVerificationText == nullptr && config.pszFooter == nullptr;
}

WideText TextOf(const WCHAR *text)
{
    return text != nullptr ? text : u"";
}

DialogIcon IconOf(const WCHAR *icon)
{
    switch (reinterpret_cast<ULONG_PTR>(icon))
    {
    case 0xFFFF: // TD_WARNING_ICON, and so on below
        return DialogIcon::Warning;
    case 0xFFFE:
        return DialogIcon::Error;
    case 0xFFFD:
        return DialogIcon::Information;
    case 0xFFFC:
        return DialogIcon::Shield;
    default:
        return DialogIcon::None;
    }
}

void AddButtons(const TASKDIALOGCONFIG &config, DialogPage &page)
{
    for (UINT i = 0; i < config.cButtons; ++i)
    {
        page.Buttons.push_back({config.pButtons[i].nButtonID, TextOf(config.pButtons[i].pszButtonText)});
    }
    for (const CommonButton &button : CommonButtons)
    {
        if (config.dwCommonButtons & button.Flag)
        {
            page.Buttons.push_back({button.Id, WordOfButton(button.Id)});
        }
    }
    if (page.Buttons.empty())
    {
        page.Buttons.push_back({IDOK, WordOfButton(IDOK)});
    }
    const auto has = [&](int id) { return std::ranges::count(page.Buttons, id, &DialogButton::Id) > 0; };
    page.DefaultButton = has(config.nDefaultButton) ? config.nDefaultButton : page.Buttons.front().Id;
    page.CancelButton = has(IDCANCEL) || (config.dwFlags & TDF_ALLOW_DIALOG_CANCELLATION) ? IDCANCEL : 0;
    page.LostButton = IDCANCEL;
}

DialogPage PageOf(const TASKDIALOGCONFIG &config)
{
    DialogPage page;
    page.Title = TextOf(config.pszWindowTitle);
    page.Icon = IconOf(config.pszMainIcon);
    page.Instruction = TextOf(config.pszMainInstruction);
    page.Content = TextOf(config.pszContent);
    page.ExpandedText = TextOf(config.pszExpandedInformation);
    page.CollapsedCaption = TextOf(config.pszCollapsedControlText);
    page.ExpandedCaption = TextOf(config.pszExpandedControlText);
    // A single caption is used for both states.
    if (page.ExpandedCaption.empty())
    {
        page.ExpandedCaption = page.CollapsedCaption.empty() ? u"Hide details" : page.CollapsedCaption;
    }
    if (page.CollapsedCaption.empty())
    {
        page.CollapsedCaption = config.pszExpandedControlText != nullptr ? page.ExpandedCaption : u"See details";
    }
    page.IsExpanded = (config.dwFlags & TDF_EXPANDED_BY_DEFAULT) != 0;
    AddButtons(config, page);
    return page;
}

template <class Value>
void Give(Value *target, Value value)
{
    if (target != nullptr)
    {
        *target = value;
    }
}

HRESULT Show(const TASKDIALOGCONFIG &config, int *button, int *radioButton, BOOL *checked)
{
    const HWND window =
        CreateWindowExW(0, u"Static", config.pszWindowTitle, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    const auto tell = [&](UINT notification) {
        if (config.pfCallback != nullptr)
        {
            config.pfCallback(window, notification, 0, 0, config.lpCallbackData);
        }
    };
    tell(TDN_DIALOG_CONSTRUCTED);
    tell(TDN_CREATED);
    Give(button, RunDialog(PageOf(config)));
    Give(radioButton, 0);
    Give(checked, FALSE);
    tell(TDN_DESTROYED);
    DestroyWindow(window);
    return S_OK;
}
} // namespace

HRESULT WINAPI TaskDialogIndirect(const TASKDIALOGCONFIG *config, int *button, int *radioButton, BOOL *checked)
{
    if (!IsValid(config))
    {
        return E_INVALIDARG;
    }
    return CanBeShown(*config) ? AtBoundary([&] { return Show(*config, button, radioButton, checked); })
                               : E_NOTIMPL;
}
