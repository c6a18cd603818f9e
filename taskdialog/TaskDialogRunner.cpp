#include "taskdialog/TaskDialogRunner.h"

#include "core/StringTable.h"
#include "ui/CentredDialogs.h"

#include <optional>

namespace
{
using ShowFunction = HRESULT(WINAPI *)(const TASKDIALOGCONFIG *, int *, int *, BOOL *);

// Looked up at run time in the library that the host has loaded, since version 5 of it lacks the function.
ShowFunction FindShowFunction()
{
    const HMODULE controls = GetModuleHandleW(TEXT("comctl32"));
    return controls == nullptr ? nullptr
                               : reinterpret_cast<ShowFunction>(
                                     reinterpret_cast<void *>(GetProcAddress(controls, "TaskDialogIndirect")));
}

// Disarms the hook when the call for which it was armed ends in any way.
class HookedCall
{
public:
    explicit HookedCall(bool hooked)
    {
        if (hooked)
        {
            ArmTaskDialogHook();
        }
    }
    ~HookedCall() { DisarmHook(); }
    HookedCall(const HookedCall &) = delete;
    HookedCall &operator=(const HookedCall &) = delete;
};

std::optional<int> ShowByPlatform(TaskDialogDocument &document, bool centred)
{
    const HookedCall call(centred);
    const ShowFunction show = FindShowFunction();
    const bool shown =
        show != nullptr && SUCCEEDED(show(&document.config, &document.selectedButton,
                                          &document.selectedRadioButton, &document.verificationChecked));
    return shown ? std::optional(document.selectedButton) : std::nullopt;
}

int ShowMessageBox(HWND parent, const MessageBoxFallback &fallback)
{
    const WideText caption = LoadStringOrPlaceholder(fallback.CaptionId);
    const WideText text = LoadStringOrPlaceholder(fallback.TextId);
    const auto show = fallback.Centred ? CentredMessageBox : MessageBoxW;
    return show(parent, text.c_str(), caption.c_str(), MB_OKCANCEL | MB_ICONINFORMATION);
}
} // namespace

int ShowTaskDialog(TaskDialogDocument &document, HWND parent, bool centred, const MessageBoxFallback &fallback)
{
    std::optional<int> outcome;
    if (document.loaded)
    {
        document.config.hwndParent = parent;
        outcome = ShowByPlatform(document, centred);
    }
    return outcome ? *outcome : ShowMessageBox(parent, fallback);
}
