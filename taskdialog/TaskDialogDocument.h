// A task dialog described by an XML document. Authors change texts and buttons in the document, a resource of
// the module; loading turns it into one TASKDIALOGCONFIG, and this object owns all strings and arrays that the
// record points to, until the next load. Used on the caller's stack for one sequence of dialogs, on one thread.
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

    // Loads a document from a module's resources. What was loaded before is dropped, even if the resource isn't
    // found. The result is also kept in loaded.
    bool LoadFromResource(UINT resourceId, const WCHAR *resourceType, HMODULE module) noexcept;

    // Loads a document from its bytes. Returns true for a document of version 1, in which words, numbers and
    // elements that the format doesn't know fall to its defaults; false for anything else and without memory.
    bool LoadDocument(std::span<const BYTE> bytes) noexcept;

    // The record's notification handler; data is the object.
    static HRESULT CALLBACK HandleNotification(HWND window, UINT notification, WPARAM wParam, LPARAM lParam,
                                               LONG_PTR data) noexcept;

    // Set by the caller: a further handler, called after the object's own work, and its data.
    PFTASKDIALOGCALLBACK clientCallback = nullptr;
    LONG_PTR clientData = 0;

    // Results of showing the dialog; loading doesn't change them.
    int selectedButton = 0;
    int selectedRadioButton = 0;
    BOOL verificationChecked = FALSE;

    // The caller sets its hwndParent after each load.
    TASKDIALOGCONFIG config{};
    bool loaded = false;

    // The texts that config and the arrays point to; a list, since appending to it moves no text.
    std::list<WideText> strings;
    std::vector<TASKDIALOG_BUTTON> customButtons;
    std::vector<TASKDIALOG_BUTTON> radioButtons;
    std::vector<INT32> shieldButtonIds;
    INT64 marqueeTime = 0; // milliseconds; 0 or less for none

    // The dialog while it is shown, else null.
    HWND dialogWindow = nullptr;

private:
    void Clear() noexcept;
};
