#include "taskdialog/TaskDialogWords.h"

#include <algorithm>
#include <iterator>

namespace
{
struct IconWord
{
    WideView word;
    ULONG_PTR icon;
};

// Numbers, since the platform's macros are pointers, which can't be constant expressions.
const IconWord IconWords[] = {
    {TEXT("information"), 65533}, // TD_INFORMATION_ICON
    {TEXT("warning"), 65535},     // TD_WARNING_ICON
    {TEXT("error"), 65534},       // TD_ERROR_ICON
    {TEXT("shield"), 65532},      // TD_SHIELD_ICON
};

struct ButtonWord
{
    WideView word;
    int flag;
    int id;
};

const ButtonWord ButtonWords[] = {
    {TEXT("ok"), TDCBF_OK_BUTTON, IDOK},          {TEXT("yes"), TDCBF_YES_BUTTON, IDYES},
    {TEXT("no"), TDCBF_NO_BUTTON, IDNO},          {TEXT("cancel"), TDCBF_CANCEL_BUTTON, IDCANCEL},
    {TEXT("retry"), TDCBF_RETRY_BUTTON, IDRETRY}, {TEXT("close"), TDCBF_CLOSE_BUTTON, IDCLOSE},
};

struct FlagWord
{
    WideView word;
    int flag;
};

const FlagWord FlagWords[] = {
    {TEXT("allow_hyperlinks"), TDF_ENABLE_HYPERLINKS},
    {TEXT("allow_cancellation"), TDF_ALLOW_DIALOG_CANCELLATION},
    {TEXT("use_command_links"), TDF_USE_COMMAND_LINKS},
    {TEXT("use_command_links_no_icon"), TDF_USE_COMMAND_LINKS_NO_ICON},
    {TEXT("expand_footer"), TDF_EXPAND_FOOTER_AREA},
    {TEXT("expanded_by_default"), TDF_EXPANDED_BY_DEFAULT},
    {TEXT("checked_by_default"), TDF_VERIFICATION_FLAG_CHECKED},
    {TEXT("show_progress_bar"), TDF_SHOW_PROGRESS_BAR},
    {TEXT("show_marquee"), TDF_SHOW_MARQUEE_PROGRESS_BAR},
    {TEXT("position_relative"), TDF_POSITION_RELATIVE_TO_WINDOW},
    {TEXT("can_be_minimized"), TDF_CAN_BE_MINIMIZED},
};

template <class Entry, size_t count>
const Entry *Find(const Entry (&table)[count], WideView word) noexcept
{
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [word](const Entry &entry) { return entry.word == word; });
    return found != std::end(table) ? found : nullptr;
}
} // namespace

const WCHAR *IconOfWord(WideView word) noexcept
{
    const IconWord *const found = Find(IconWords, word);
    return found != nullptr ? reinterpret_cast<const WCHAR *>(found->icon) : nullptr;
}

int CommonButtonOfWord(WideView word) noexcept
{
    const ButtonWord *const found = Find(ButtonWords, word);
    return found != nullptr ? found->flag : 0;
}

int ButtonIdOfWord(WideView word) noexcept
{
    const ButtonWord *const found = Find(ButtonWords, word);
    return found != nullptr ? found->id : 0;
}

int FlagOfWord(WideView word) noexcept
{
    const FlagWord *const found = Find(FlagWords, word);
    return found != nullptr ? found->flag : 0;
}
