// A modal property sheet whose window is subclassed by an object. Windows build only.
#pragma once

#include "ui/WindowImpl_win32.h"

#include <windows.h>
#include <commctrl.h>

#include <vector>

class CPropertySheetImpl : public CWindowImpl
{
public:
    // titleId names the caption in the module's string table. The sheet has OK and Cancel and no other buttons.
    explicit CPropertySheetImpl(UINT titleId) noexcept;
    ~CPropertySheetImpl() override;

    // Blocks until the user has closed the sheet. Returns a positive number for OK, otherwise 0 or a negative
    // one. May be called once for each object.
    INT_PTR DoModal(HWND parent) noexcept;

protected:
    // Takes ownership of the next page in tab order; a null page is left out.
    void AddPage(HPROPSHEETPAGE page);

private:
    static int CALLBACK OnSheet(HWND sheet, UINT message, LPARAM lParam);

    PROPSHEETHEADERW m_header{sizeof(m_header)};
    std::vector<HPROPSHEETPAGE> m_pageHandles;
};
