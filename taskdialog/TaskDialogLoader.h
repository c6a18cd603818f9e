// Reading of a task dialog document into the object that owns its dialog.
#pragma once

#include "taskdialog/TaskDialogDocument.h"

// Fills document, which must be empty. Throws a failed HRESULT for bytes that are no task dialog
// document of version 1, E_OUTOFMEMORY, or what the XML service fails with; document is half filled then.
void LoadTaskDialog(std::span<const BYTE> bytes, TaskDialogDocument &document);
