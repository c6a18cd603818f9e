// A modal property sheet whose window is seen as an object. Windows only.
#pragma once

#include "ui/WindowImpl.h"

#include <windows.h>
#include <commctrl.h>

#include <vector>

class CPropertySheetImpl : public CWindowImpl
{
public:
    // The sheet's caption is the module's string of that number. It has OK and Cancel and no other buttons.
    explicit CPropertySheetImpl(UINT titleId) noexcept;
    ~CPropertySheetImpl() override;

    // Blocks until the user has closed the sheet. Positive if it was confirmed, else 0 or negative. Once for
    // each object.
    INT_PTR DoModal(HWND parent) noexcept;

protected:
    // Takes over a page, the next in tab order; null leaves it out.
    void AddPage(HPROPSHEETPAGE page);

private:
    static int CALLBACK OnSheet(HWND sheet, UINT message, LPARAM lParam);

    PROPSHEETHEADERW m_header{sizeof(m_header)};
    std::vector<HPROPSHEETPAGE> m_pageHandles;
};
