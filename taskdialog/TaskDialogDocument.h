// A dialog described by an XML document, and the object that owns what the platform needs to show
// it: one TASKDIALOGCONFIG with all its strings and arrays, filled by loading and valid until the
// next load. Made on the stack of the caller for one sequence of dialogs; one thread.
#pragma once

#include "com/WideText.h"

#include <windows.h>
#include <commctrl.h>

#include <list>
#include <span>
#include <vector>

class TaskDialogDocument
{
public:
    TaskDialogDocument() = default;
    TaskDialogDocument(const TaskDialogDocument &) = delete;
    TaskDialogDocument &operator=(const TaskDialogDocument &) = delete;

    // Loads a document that lies among a module's resources. Whatever was loaded before is gone, also
    // if the resource isn't found. The result is kept in loaded.
    bool LoadFromResource(UINT resourceId, const WCHAR *resourceType, HMODULE module) noexcept;

    // Loads a document from its bytes. True if it is one of version 1: words, numbers and elements that
    // the format doesn't know fall to its defaults. False for everything else, out of memory too.
    bool LoadDocument(std::span<const BYTE> bytes) noexcept;

    // The notification handler of the record, with the object as data.
    static HRESULT CALLBACK HandleNotification(HWND window, UINT notification, WPARAM wParam, LPARAM lParam,
                                               LONG_PTR data) noexcept;

    // The caller's: a further handler, called after the object's own work, and what it gets as data.
    PFTASKDIALOGCALLBACK clientCallback = nullptr;
    LONG_PTR clientData = 0;

    // Results of showing; loading leaves them alone.
    int selectedButton = 0;
    int selectedRadioButton = 0;
    BOOL verificationChecked = FALSE;

    // Its hwndParent is the caller's to set, after each load.
    TASKDIALOGCONFIG config{};
    bool loaded = false;

    // Every text that config or an entry of the arrays points to; a list, so that appending moves none.
    std::list<WideText> strings;
    std::vector<TASKDIALOG_BUTTON> customButtons;
    std::vector<TASKDIALOG_BUTTON> radioButtons;
    std::vector<INT32> shieldButtonIds;
    INT64 marqueeTime = 0; // milliseconds; 0 or less for none

    // The dialog while it is up.
    HWND dialogWindow = nullptr;

private:
    void Clear() noexcept;
};
