#include "settings/PropertySheet_win32.h"

#include "core/ThisModule.h"

#include <utility>

namespace
{
// The sheet that this thread is about to open: the platform's callback carries no data of the caller.
thread_local CPropertySheetImpl *opening = nullptr;
} // namespace

CPropertySheetImpl::CPropertySheetImpl(UINT titleId) noexcept
{
    m_header.dwFlags = PSH_USECALLBACK | PSH_NOAPPLYNOW | PSH_NOCONTEXTHELP;
    m_header.hInstance = ThisModule();
    m_header.pszCaption = MAKEINTRESOURCEW(titleId);
    m_header.pfnCallback = OnSheet;
}

CPropertySheetImpl::~CPropertySheetImpl()
{
    for (const HPROPSHEETPAGE page : m_pageHandles)
    {
        DestroyPropertySheetPage(page);
    }
}

void CPropertySheetImpl::AddPage(HPROPSHEETPAGE page)
{
    if (page != nullptr)
    {
        m_pageHandles.push_back(page);
    }
}

INT_PTR CPropertySheetImpl::DoModal(HWND parent) noexcept
{
    // PropertySheetW destroys the pages, also when it fails.
    std::vector<HPROPSHEETPAGE> pages = std::exchange(m_pageHandles, {});
    m_header.hwndParent = parent;
    m_header.nPages = static_cast<UINT>(pages.size());
    m_header.phpage = pages.data();
    opening = this;
    const INT_PTR result = PropertySheetW(&m_header);
    opening = nullptr;
    return result;
}

int CALLBACK CPropertySheetImpl::OnSheet(HWND sheet, UINT message, LPARAM)
{
    if (message == PSCB_INITIALIZED)
    {
        if (CPropertySheetImpl *const object = std::exchange(opening, nullptr))
        {
            object->SubclassWindow(sheet);
        }
    }
    return 0;
}
