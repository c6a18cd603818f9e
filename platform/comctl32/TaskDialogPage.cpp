#include "platform/comctl32/TaskDialogPage.h"

#include "com/WideText.h"
#include "platform/kernel32/LoadedModules.h"
#include "com/TextConversion.h"
#include "platform/terminal/ButtonWords.h"

#include <algorithm>
#include <cctype>

namespace
{
struct CommonButton
{
    int flag;
    int id;
};

// In the order in which a task dialog shows them, after the caller's own buttons.
constexpr CommonButton CommonButtons[] = {
    {TDCBF_OK_BUTTON, IDOK},       {TDCBF_YES_BUTTON, IDYES},       {TDCBF_NO_BUTTON, IDNO},
    {TDCBF_RETRY_BUTTON, IDRETRY}, {TDCBF_CANCEL_BUTTON, IDCANCEL}, {TDCBF_CLOSE_BUTTON, IDCLOSE},
};

// Removes the "&" that marks the letter of a keyboard shortcut; "&&" is one "&".
std::u16string WithoutMnemonic(std::u16string_view text)
{
    std::u16string plain;
    for (size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == u'&' && ++i == text.size())
        {
            break;
        }
        plain += text[i];
    }
    return plain;
}

bool StartsWithTag(std::u16string_view text, std::u16string_view tag)
{
    const auto same = [](char16_t a, char16_t b) { return a == (b >= u'A' && b <= u'Z' ? b + 32 : b); };
    return text.size() >= tag.size() && std::equal(tag.begin(), tag.end(), text.begin(), same);
}

// Replaces <a href="address">words</a> by "words [L1: address]".
std::u16string MarkLinks(std::u16string_view text, std::vector<std::u16string> &links)
{
    std::u16string marked;
    while (!text.empty())
    {
        const size_t start = std::min(text.find(u'<'), text.size());
        marked += text.substr(0, start);
        text.remove_prefix(start);
        const size_t quote = StartsWithTag(text, u"<a ") ? text.find(u'"') : text.npos;
        const size_t closing = quote != text.npos ? text.find(u'"', quote + 1) : text.npos;
        const size_t words = closing != text.npos ? text.find(u'>', closing) : text.npos;
        const size_t end = words != text.npos ? text.find(u'<', words) : text.npos;
        if (end == text.npos || !StartsWithTag(text.substr(end), u"</a>"))
        {
            marked += text.substr(0, 1);
            text.remove_prefix(text.empty() ? 0 : 1);
            continue;
        }
        links.emplace_back(text.substr(quote + 1, closing - quote - 1));
        const std::string number = std::to_string(links.size());
        marked += text.substr(words + 1, end - words - 1);
        marked += u" [L" + std::u16string(number.begin(), number.end()) + u": " + links.back() + u"]";
        text.remove_prefix(end + 4);
    }
    return marked;
}

std::u16string NameOfProgram()
{
    const auto program = FindModule(nullptr);
    const std::u16string path = program ? PathFromBytes(program->path.c_str()) : std::u16string();
    return path.substr(path.rfind(u'/') + 1);
}

void AddButtons(const TASKDIALOGCONFIG &config, DialogPage &page)
{
    page.commandLinkArrows = (config.dwFlags & TDF_USE_COMMAND_LINKS) != 0;
    page.commandLinks = page.commandLinkArrows || (config.dwFlags & TDF_USE_COMMAND_LINKS_NO_ICON) != 0;
    for (UINT i = 0; i < config.cButtons; ++i)
    {
        const TASKDIALOG_BUTTON &button = config.pButtons[i];
        const std::u16string text =
            WithoutMnemonic(TaskDialogText(config.hInstance, button.pszButtonText, nullptr));
        const size_t end = page.commandLinks ? text.find(u'\n') : text.npos;
        page.buttons.push_back(
            {button.nButtonID, text.substr(0, end), end != text.npos ? text.substr(end + 1) : std::u16string()});
    }
    for (const CommonButton &button : CommonButtons)
    {
        if (config.dwCommonButtons & button.flag)
        {
            page.buttons.push_back({button.id, WordOfButton(button.id)});
        }
    }
    if (page.buttons.empty())
    {
        page.buttons.push_back({IDOK, WordOfButton(IDOK)});
    }
    const auto named = std::find_if(page.buttons.begin(), page.buttons.end(),
                                    [&](const auto &button) { return button.id == config.nDefaultButton; });
    page.defaultButton = named != page.buttons.end() ? named->id : page.buttons.front().id;
    const bool hasCancel = std::any_of(page.buttons.begin(), page.buttons.end(),
                                       [](const auto &button) { return button.id == IDCANCEL; });
    page.cancelButton = hasCancel || (config.dwFlags & TDF_ALLOW_DIALOG_CANCELLATION) ? IDCANCEL : 0;
    page.lostButton = IDCANCEL;
}

void AddRadioButtons(const TASKDIALOGCONFIG &config, DialogPage &page)
{
    for (UINT i = 0; i < config.cRadioButtons; ++i)
    {
        const TASKDIALOG_BUTTON &button = config.pRadioButtons[i];
        page.radioButtons.push_back(
            {button.nButtonID, WithoutMnemonic(TaskDialogText(config.hInstance, button.pszButtonText, nullptr))});
        if (button.nButtonID == config.nDefaultRadioButton)
        {
            page.selectedRadioButton = button.nButtonID;
        }
    }
    if (!page.radioButtons.empty() && page.selectedRadioButton == 0 &&
        !(config.dwFlags & TDF_NO_DEFAULT_RADIO_BUTTON))
    {
        page.selectedRadioButton = page.radioButtons.front().id;
    }
}
} // namespace

std::u16string TaskDialogText(HINSTANCE module, const WCHAR *text, std::vector<std::u16string> *links)
{
    std::u16string result;
    if (text != nullptr && IS_INTRESOURCE(text))
    {
        const WCHAR *entry = nullptr;
        const int length = LoadStringW(module, static_cast<UINT>(reinterpret_cast<ULONG_PTR>(text)),
                                       reinterpret_cast<LPWSTR>(&entry), 0);
        result.assign(entry != nullptr ? entry : u"", static_cast<size_t>(length));
    }
    else if (text != nullptr)
    {
        result = text;
    }
    return links != nullptr ? MarkLinks(result, *links) : result;
}

DialogIcon TaskDialogIcon(const WCHAR *icon)
{
    switch (reinterpret_cast<ULONG_PTR>(icon))
    {
    case 0xFFFF:
    case 32515:
        return DialogIcon::Warning; // IDI_WARNING, and so on below
    case 0xFFFE:
    case 32513:
        return DialogIcon::Error;
    case 0xFFFD:
    case 32516:
        return DialogIcon::Information;
    case 0xFFFC:
    case 32518:
        return DialogIcon::Shield;
    case 32514:
        return DialogIcon::Question;
    default:
        return DialogIcon::None;
    }
}

DialogPage PageOf(const TASKDIALOGCONFIG &config)
{
    DialogPage page;
    const auto has = [&](int flag) { return (config.dwFlags & flag) != 0; };
    std::vector<std::u16string> *const links = has(TDF_ENABLE_HYPERLINKS) ? &page.links : nullptr;
    const auto plain = [&](const WCHAR *text) { return TaskDialogText(config.hInstance, text, nullptr); };
    const auto linked = [&](const WCHAR *text) { return TaskDialogText(config.hInstance, text, links); };
    page.title = config.pszWindowTitle != nullptr ? plain(config.pszWindowTitle) : NameOfProgram();
    page.icon = has(TDF_USE_HICON_MAIN) ? DialogIcon::None : TaskDialogIcon(config.pszMainIcon);
    page.instruction = plain(config.pszMainInstruction);
    page.content = linked(config.pszContent);
    page.expandedText = linked(config.pszExpandedInformation);
    page.collapsedCaption = WithoutMnemonic(plain(config.pszCollapsedControlText));
    page.expandedCaption = WithoutMnemonic(plain(config.pszExpandedControlText));
    // A single caption is used for both states.
    if (page.collapsedCaption.empty())
    {
        page.collapsedCaption = page.expandedCaption.empty() ? u"See details" : page.expandedCaption;
    }
    if (page.expandedCaption.empty())
    {
        page.expandedCaption = config.pszCollapsedControlText != nullptr ? page.collapsedCaption : u"Hide details";
    }
    page.expanded = has(TDF_EXPANDED_BY_DEFAULT);
    page.expandsBelowFooter = has(TDF_EXPAND_FOOTER_AREA);
    page.footer = linked(config.pszFooter);
    page.footerIcon = has(TDF_USE_HICON_FOOTER) ? DialogIcon::None : TaskDialogIcon(config.pszFooterIcon);
    page.checkBox = WithoutMnemonic(plain(config.pszVerificationText));
    page.checked = has(TDF_VERIFICATION_FLAG_CHECKED);
    page.progress.shown = has(TDF_SHOW_PROGRESS_BAR) || has(TDF_SHOW_MARQUEE_PROGRESS_BAR);
    page.progress.marquee = has(TDF_SHOW_MARQUEE_PROGRESS_BAR);
    page.progress.running = false;
    AddButtons(config, page);
    AddRadioButtons(config, page);
    return page;
}
