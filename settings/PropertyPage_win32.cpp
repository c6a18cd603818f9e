#include "settings/PropertyPage_win32.h"

#include "com/Hresult.h"
#include "core/ThisModule.h"

HPROPSHEETPAGE CPropertyPageImpl::Create() noexcept
{
    PROPSHEETPAGEW page{sizeof(page)};
    page.dwFlags = PSP_USECALLBACK;
    page.hInstance = ThisModule();
    page.pszTemplate = MAKEINTRESOURCEW(m_templateId);
    page.pfnDlgProc = Procedure;
    page.pfnCallback = OnPage;
    page.lParam = reinterpret_cast<LPARAM>(this);
    return CreatePropertySheetPageW(&page);
}

UINT CALLBACK CPropertyPageImpl::OnPage(HWND, UINT message, PROPSHEETPAGEW *)
{
    // Returning 0 from PSPCB_CREATE would keep the page from being created.
    return message == PSPCB_CREATE;
}

INT_PTR CALLBACK CPropertyPageImpl::Procedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        const auto *description = reinterpret_cast<const PROPSHEETPAGEW *>(lParam);
        reinterpret_cast<CPropertyPageImpl *>(description->lParam)->m_window = page;
        SetWindowLongPtrW(page, DWLP_USER, description->lParam);
    }
    auto *const object = reinterpret_cast<CPropertyPageImpl *>(GetWindowLongPtrW(page, DWLP_USER));
    if (object == nullptr)
    {
        return FALSE;
    }
    LRESULT result = 0;
    bool isHandled = true;
    AtBoundary([&] {
        isHandled = object->ProcessWindowMessage(page, message, wParam, lParam, result);
        return S_OK;
    });
    if (message == WM_NCDESTROY)
    {
        SetWindowLongPtrW(page, DWLP_USER, 0);
        object->m_window = nullptr;
    }
    if (!isHandled)
    {
        return FALSE;
    }
    // A dialog procedure returns the result of these messages; for all others it sets DWLP_MSGRESULT.
    if (message == WM_INITDIALOG || (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC))
    {
        return result;
    }
    SetWindowLongPtrW(page, DWLP_MSGRESULT, result);
    return TRUE;
}
