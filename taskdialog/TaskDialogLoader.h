// Reads a task dialog document into the object that owns its dialog.
#pragma once

#include "taskdialog/TaskDialogDocument.h"

// Fills document, which must be empty. Throws a failed HRESULT if the bytes are no task dialog document of
// version 1, E_OUTOFMEMORY, or the failure of the XML parser; document may be half filled then.
void LoadTaskDialog(std::span<const BYTE> bytes, TaskDialogDocument &document);
