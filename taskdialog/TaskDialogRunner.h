// Showing a task dialog document, with a message box for systems that have no task dialogs.
#pragma once

#include "taskdialog/TaskDialogDocument.h"

// The same question in a plain message box with OK and Cancel, by entries of the string table.
struct MessageBoxFallback
{
    UINT CaptionId;
    UINT TextId;
    bool Centred; // on its owner
};

// Shows the loaded document, modal to parent, and returns the identifier of the button that closed it;
// if the document isn't loaded, or the platform can't show it, the message box and IDOK or IDCANCEL.
// IDCANCEL is the user's no in both. centred puts the dialog in the middle of its parent. Radio button and
// check box are found in the document. Blocks; on the thread of the parent window.
int ShowTaskDialog(TaskDialogDocument &document, HWND parent, bool centred, const MessageBoxFallback &fallback);
