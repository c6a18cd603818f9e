// One page of a property sheet, made from a dialog template of the module. Windows only.
#pragma once

#include <windows.h>
#include <commctrl.h>

class CPropertyPageImpl
{
public:
    explicit CPropertyPageImpl(UINT templateId) noexcept : m_templateId(templateId) {}
    CPropertyPageImpl(const CPropertyPageImpl &) = delete;
    CPropertyPageImpl &operator=(const CPropertyPageImpl &) = delete;

    // True if the message needs no more, with its result filled; otherwise it is the platform's. What it
    // throws ends the message, which then counts as handled with 0.
    virtual bool ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) = 0;
    virtual ~CPropertyPageImpl() = default;

    // The page for a sheet, which then owns the handle; null on failure. This object must outlive the sheet.
    HPROPSHEETPAGE Create() noexcept;

    // Null until the page was brought to the top once, and after its end.
    HWND Window() const noexcept { return m_window; }

private:
    static INT_PTR CALLBACK Procedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);
    static UINT CALLBACK OnPage(HWND, UINT message, PROPSHEETPAGEW *page);

    UINT m_templateId;
    HWND m_window = nullptr;
};
