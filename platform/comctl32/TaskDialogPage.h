// The page of a terminal dialog that a TASKDIALOGCONFIG describes.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <windows.h>
#include <commctrl.h>

DialogPage PageOf(const TASKDIALOGCONFIG &config);

// A text of the record or of a message: a string of the module's table where it is an identifier; links
// are marked and their addresses added to links, which may be null where links are not enabled.
std::u16string TaskDialogText(HINSTANCE module, const WCHAR *text, std::vector<std::u16string> *links);

DialogIcon TaskDialogIcon(const WCHAR *icon);
