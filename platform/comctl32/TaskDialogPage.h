// Translates a TASKDIALOGCONFIG into the page of a terminal dialog.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <windows.h>
#include <commctrl.h>

DialogPage PageOf(const TASKDIALOGCONFIG &config);

// A text of the configuration or of a message; an identifier is looked up in the module's string table.
// Marks the links in it and adds their addresses to `links`, which is null if links are not enabled.
std::u16string TaskDialogText(HINSTANCE module, const WCHAR *text, std::vector<std::u16string> *links);

DialogIcon TaskDialogIcon(const WCHAR *icon);
