// One page of a property sheet, made from a dialog template of the module. Windows build only.
#pragma once

#include <windows.h>
#include <commctrl.h>

class CPropertyPageImpl
{
public:
    explicit CPropertyPageImpl(UINT templateId) noexcept : m_templateId(templateId) {}
    CPropertyPageImpl(const CPropertyPageImpl &) = delete;
    CPropertyPageImpl &operator=(const CPropertyPageImpl &) = delete;

    // Returns true if it has handled the message and set result; otherwise the platform handles it. If it
    // throws, the message counts as handled with result 0.
    virtual bool ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) = 0;
    virtual ~CPropertyPageImpl() = default;

    // Creates the page for a sheet, which then owns the handle; null on failure. This object must outlive the
    // sheet.
    HPROPSHEETPAGE Create() noexcept;

    // Null until the page has been on top once, and after its window is destroyed.
    HWND Window() const noexcept { return m_window; }

private:
    static INT_PTR CALLBACK Procedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);
    static UINT CALLBACK OnPage(HWND, UINT message, PROPSHEETPAGEW *page);

    UINT m_templateId;
    HWND m_window = nullptr;
};
