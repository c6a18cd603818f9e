// The real dialogs of an authorization, and the real browser.
#pragma once

#include "account/AuthorizationFlow.h"
#include "taskdialog/TaskDialogDocument.h"

// Serves one authorization, on the thread of the parent window.
class AuthorizationDialogs final : public AuthorizationInteraction
{
public:
    int AskConsent(HWND parent) override;
    void PrepareCompletion() override;
    void OpenPage(HWND parent, const WCHAR *address) override;
    void LockForeground(bool isLocked) override;
    int AskCompletion(HWND parent) override;
    void ShowError(HWND parent, const WCHAR *text, const WCHAR *caption) override;

private:
    TaskDialogDocument m_document; // of the dialog that is shown next
};
