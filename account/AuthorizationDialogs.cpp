#include "account/AuthorizationDialogs.h"

#include "core/ThisModule.h"
#include "resources/resource.h"
#include "taskdialog/TaskDialogRunner.h"
#include "ui/CentredDialogs.h"

#include <shellapi.h>

namespace
{
constexpr const WCHAR *DocumentType = TEXT("TDXML");
constexpr MessageBoxFallback ConsentBox{IDS_AUTHORIZE_CAPTION, IDS_AUTHORIZE_TEXT, true};
constexpr MessageBoxFallback CompletionBox{IDS_COMPLETION_CAPTION, IDS_COMPLETION_TEXT, false};
} // namespace

int AuthorizationDialogs::AskConsent(HWND parent)
{
    m_document.LoadFromResource(IDX_AUTHORIZE, DocumentType, ThisModule());
    return ShowTaskDialog(m_document, parent, true, ConsentBox);
}

void AuthorizationDialogs::PrepareCompletion()
{
    m_document.LoadFromResource(IDX_COMPLETION, DocumentType, ThisModule());
}

void AuthorizationDialogs::OpenPage(HWND parent, const WCHAR *address)
{
    AllowSetForegroundWindow(ASFW_ANY);
    ShellExecuteW(parent, TEXT("open"), address, nullptr, nullptr, SW_SHOWMAXIMIZED);
}

void AuthorizationDialogs::LockForeground(bool isLocked)
{
    LockSetForegroundWindow(isLocked ? LSFW_LOCK : LSFW_UNLOCK);
}

int AuthorizationDialogs::AskCompletion(HWND parent)
{
    return ShowTaskDialog(m_document, parent, false, CompletionBox);
}

void AuthorizationDialogs::ShowError(HWND parent, const WCHAR *text, const WCHAR *caption)
{
    CentredMessageBox(parent, text, caption, MB_OK | MB_ICONERROR);
}
