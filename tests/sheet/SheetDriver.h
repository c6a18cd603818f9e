// Drives the settings sheet's real windows from a thread beside the one that shows it.
#pragma once

#include "tests/ui/DialogDriver_win32.h"

// The open sheet. A window or control that is missing, or doesn't appear in time, fails the test.
class OpenSheet
{
public:
    // thread shows the sheet.
    OpenSheet(HWND sheet, DWORD thread) noexcept : m_sheet(sheet), m_thread(thread) {}

    HWND Window() const noexcept { return m_sheet; }
    HWND Tabs() const;
    HWND Button(int id) const;

    // Null if the sheet has none.
    HWND HomepageLink() const;
    HWND Animation() const;

    // Pages by their place in the tab row.
    void SelectPage(int index) const;
    int SelectedPage() const;

    // Controls of the page on top.
    HWND Control(UINT id) const;
    void Click(UINT id) const;
    bool IsChecked(UINT id) const;
    bool IsEnabled(UINT id) const;
    WideText Text(UINT id) const;

    // Replaces what stands in the edit field of a combo box.
    void Type(UINT id, const WCHAR *text) const;

    // Posts a mouse click and doesn't wait for its effect.
    void ClickLink(HWND link) const;

    // Posts a key to the control with the focus.
    void PressKey(WPARAM key) const;

    // Null while no window of the sheet's thread has the focus.
    HWND Focus() const;

    // Presses OK or Cancel, or closes the sheet by its title bar; return when the sheet is gone.
    void Close(int button) const;
    void CloseByTitleBar() const;

    // Waits for another dialog with that title over the sheet.
    HWND WaitForDialog(const WCHAR *title) const;

private:
    void WaitForEnd() const;

    HWND m_sheet;
    DWORD m_thread;
};

class SheetDriver : public DialogDriver
{
public:
    // The next sheet that the calling thread shows is handed to act, and cancelled if act leaves it open. The
    // destructor waits for act to end.
    explicit SheetDriver(std::function<void(const OpenSheet &)> act);
};
