// Shows a task dialog document, or a message box on systems without task dialogs.
#pragma once

#include "taskdialog/TaskDialogDocument.h"

// The same question in a plain message box with OK and Cancel, by entries of the string table.
struct MessageBoxFallback
{
    UINT CaptionId;
    UINT TextId;
    bool Centred; // on its owner
};

// Shows the loaded document, modal to parent, and returns the identifier of the button that closed it. If the
// document isn't loaded or the platform can't show it, shows the message box and returns IDOK or IDCANCEL.
// IDCANCEL means no in both. centred centres the dialog on its parent. The radio button and check box that the
// user chose are in document afterwards. Blocks; call it on the thread of the parent window.
int ShowTaskDialog(TaskDialogDocument &document, HWND parent, bool centred, const MessageBoxFallback &fallback);
