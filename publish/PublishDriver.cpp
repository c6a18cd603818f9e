#include "publish/PublishDriver.h"

#include "account/AccountRecord.h"
#include "com/HandleOwner.h"
#include "core/HostLog.h"
#include "com/Hresult.h"
#include "core/StringTable.h"
#include "core/VersionBlock.h"
#include "publish/ItemPublishing.h"
#include "publish/ItemRecord.h"
#include "resources/resource.h"

#include <commctrl.h>
#include <shlwapi.h>

namespace
{
WideText Text(UINT id)
{
    return LoadStringOrPlaceholder(id);
}

void ShowStatus(const RunContext &run, UINT id)
{
    SetWindowTextW(run.Windows.StaticTextWindow, Text(id).c_str());
}

void SetBar(const RunContext &run, UINT message, WPARAM value, LPARAM top = 0)
{
    SendMessageW(run.Windows.ProgressWindow, message, value, top);
}

WideText ByteSizeText(INT64 size)
{
    WCHAR text[64] = {};
    StrFormatByteSizeW(size, text, 64);
    return text;
}

void LogBanner(const RunContext &run)
{
    LogVerbose(run.Host, Text(IDS_LOG_STARTING).c_str());
    LogVerbose(run.Host, Text(IDS_LOG_BANNER).c_str(), Text(IDS_DISPLAY_NAME).c_str(),
               run.Version.String(TEXT("FileVersion")).c_str());
    const AccountRecord &account = run.Account;
    const WideText maxFileSize = ByteSizeText(account.MaxFileSize);
    const WideText uploadLeft = account.UploadLeftThisMonth == UnlimitedUpload
                                    ? Text(IDS_UNLIMITED)
                                    : ByteSizeText(account.UploadLeftThisMonth);
    LogVerbose(run.Host, Text(IDS_LOG_ACCOUNT).c_str(), account.FullName.Text(), account.AccountType.Text(),
               maxFileSize.c_str(), uploadLeft.c_str());
}

void PublishItems(const RunContext &run, const UINT64 *items, INT32 count, HRESULT &runResult)
{
    for (INT32 index = 0; index < count; ++index)
    {
        if (run.Cancel.CancelRequested || FAILED(runResult))
        {
            return;
        }
        ItemRecordOwner record;
        run.Host->GetItemRecord(items[index], record.Get());
        runResult = PublishItem(run, *record);
    }
}

void BeginItems(const RunContext &run, INT32 count)
{
    PrepareRun(run);
    const INT64 top = INT64{count} * static_cast<INT64>(UnitsPerItem);
    if (count != 0)
    {
        run.Statistics.Start(static_cast<UINT64>(top), run.Now());
    }
    SetBar(run, PBM_SETRANGE32, 0, static_cast<LPARAM>(top));
    SetBar(run, PBM_SETSTATE, PBST_NORMAL);
    SetBar(run, PBM_SETPOS, 0);
    if (run.Usage != nullptr)
    {
        run.Usage->RecordUsage(TEXT("WebPublisher:Flickr"), TEXT("Publishing"), count);
    }
}

// The memory belongs to the host; it is locked for the whole run and never freed here.
HRESULT PublishList(const RunContext &run, INT32 count, HGLOBAL list)
{
    const auto *items = static_cast<const UINT64 *>(GlobalLock(list));
    if (items == nullptr)
    {
        LogFatal(run.Host, Text(IDS_LOG_NO_LIST).c_str());
        return E_UNEXPECTED;
    }
    const GlobalLockOwner lock(list);
    HRESULT runResult = S_OK;
    BeginItems(run, count);
    PublishItems(run, items, count, runResult);
    return runResult;
}

void ReportEnd(const RunContext &run, HRESULT runResult)
{
    if (FAILED(runResult))
    {
        run.Progress->OnUploadProgress(RUN_FAILED, 0, 0);
        ShowStatus(run, IDS_STATUS_ERROR);
    }
    else if (run.Cancel.CancelRequested)
    {
        run.Progress->OnUploadProgress(RUN_CANCELLED, 0, 0);
        ShowStatus(run, run.Cancel.CancelAbruptly ? IDS_STATUS_ABORTED : IDS_STATUS_CANCELLED);
    }
    else
    {
        ShowStatus(run, IDS_STATUS_DONE);
    }
}

void RunList(const RunContext &run)
{
    INT32 count = 0;
    HGLOBAL list = nullptr;
    if (FAILED(run.Host->GetItemList(&count, &list)))
    {
        LogFatal(run.Host, Text(IDS_LOG_NO_LIST).c_str());
        ShowStatus(run, IDS_STATUS_ERROR);
        return;
    }
    ReportEnd(run, PublishList(run, count, list));
}

// Stores the windows for the length of a run, also of one that ends by an exception.
class WindowsOfRun
{
public:
    WindowsOfRun(ProgressWindows &windows, HWND bar, HWND statusText) : m_windows(windows)
    {
        windows = {bar, statusText};
    }
    ~WindowsOfRun() { m_windows = {}; }
    WindowsOfRun(const WindowsOfRun &) = delete;
    WindowsOfRun &operator=(const WindowsOfRun &) = delete;

private:
    ProgressWindows &m_windows;
};
} // namespace

void RunPublish(const RunContext &run, HWND bar, HWND statusText)
{
    run.Statistics.Reset();
    run.Cancel.CancelRequested = 0;
    run.Cancel.CancelAbruptly = 0;
    const WindowsOfRun windows(run.Windows, bar, statusText);
    LogBanner(run);
    ShowStatus(run, IDS_STATUS_CHECKING);
    SetBar(run, PBM_SETPOS, 0);
    SetBar(run, PBM_SETSTATE, PBST_NORMAL);
    LogInfo(run.Host, Text(IDS_LOG_PUBLISHING_TO).c_str(), TEXT("User Photostream"));
    ShowStatus(run, IDS_STATUS_PUBLISHING);
    RunList(run);
    LogVerbose(run.Host, Text(IDS_LOG_ENDING).c_str());
}

void RequestCancel(IHalvoraPublishingHost *host, CancelFlags &cancel, bool abruptly) noexcept
{
    // A run must stop even if there is no memory for the log entry.
    AtBoundary([&] {
        LogWarning(host, Text(abruptly ? IDS_LOG_CANCELLING_ABRUPTLY : IDS_LOG_CANCELLING).c_str());
        return S_OK;
    });
    cancel.CancelRequested = 1;
    cancel.CancelAbruptly = abruptly ? 1 : 0;
}
