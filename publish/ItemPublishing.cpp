#include "publish/ItemPublishing.h"

#include "account/ServiceReply.h"
#include "com/BstrOwner.h"
#include "core/FormatText.h"
#include "core/HostLog.h"
#include "core/StringTable.h"
#include "publish/FileChoice.h"
#include "publish/UploadRequest.h"
#include "resources/resource.h"
#include "settings/SettingsStore.h"
#include "settings/StateLine.h"

#include "XmlInterfaces.h"

#include <shlwapi.h>
#include <wincodec.h>

namespace
{
// One item: the file chosen for it and the result of its upload.
struct Item
{
    FileChoice Choice;
    WideText SourcePath;
    WideText JpegName;
    WideText WebName;
    ComPtr<IUnknown> Reply;
    HRESULT Result = S_OK;
};

WideText WithExtension(const WCHAR *stem, WideView extension)
{
    return FormatText(TEXT("%ls.%ls"), stem, WideText(extension).c_str());
}

Item ChooseForItem(const ItemRecord &record)
{
    const WCHAR *const path = record.Path ? record.Path : TEXT("");
    const WideView extensions =
        record.Extensions ? WideView(record.Extensions, SysStringLen(record.Extensions)) : WideView();
    const WCHAR *const name = PathFindFileNameW(path);
    Item item{.Choice = ChooseFile(extensions)};
    if (!item.Choice.Extension.empty())
    {
        item.SourcePath = WithExtension(path, item.Choice.Extension);
        item.WebName = WithExtension(name, item.Choice.Extension);
    }
    item.JpegName = WithExtension(name, TEXT("jpg"));
    return item;
}

void Upload(const RunContext &run, Item &item, const WideText &uploadName, const UploadOptions &options)
{
    item.Result = UploadOneFile(run, item.SourcePath.c_str(), uploadName.c_str(), item.Reply, options);
}

void LogPath(void (*log)(IHalvoraPublishingHost *, const WCHAR *, ...), const RunContext &run, UINT format,
             const Item &item)
{
    log(run.Host, LoadStringOrPlaceholder(format).c_str(), item.SourcePath.c_str());
}

void UploadProcessed(const RunContext &run, Item &item)
{
    Upload(run, item, item.JpegName, {run.Settings.RAW, SendProcessed, false});
}

// The file is of another kind than its extension says. In processed mode the host may still be able to read
// it; otherwise the item has failed.
void HandleWrongExtension(const RunContext &run, Item &item)
{
    if (run.Settings.JPEGMode == SendProcessed)
    {
        LogPath(LogWarning, run, IDS_LOG_WRONG_EXTENSION, item);
        UploadProcessed(run, item);
        return;
    }
    LogPath(LogError, run, IDS_LOG_WRONG_EXTENSION, item);
    item.Result = E_FAIL;
}

void UploadChosenFile(const RunContext &run, Item &item)
{
    if (item.Choice.Class == ExtensionClass::Other)
    {
        LogPath(LogInfo, run, IDS_LOG_PUBLISHING_AS_JPEG, item);
        UploadProcessed(run, item);
        return;
    }
    LogPath(LogInfo, run, IDS_LOG_PUBLISHING, item);
    if (item.Choice.Class == ExtensionClass::Jpeg)
    {
        Upload(run, item, item.JpegName, {run.Settings.JPEG, run.Settings.JPEGMode, true});
    }
    else
    {
        Upload(run, item, item.WebName, {{}, SendAsIs, true});
    }
    if (item.Result == WINCODEC_ERR_BADHEADER)
    {
        HandleWrongExtension(run, item);
    }
}

// A reply that doesn't name an outcome counts as a success.
bool HasSucceeded(const Item &item)
{
    if (FAILED(item.Result))
    {
        return false;
    }
    const auto document = item.Reply.As<IXMLDOMDocument2>();
    BstrOwner outcome;
    if (!document || FAILED(ReadNodeText(document.Get(), TEXT("/rsp/@stat"), outcome)))
    {
        return true;
    }
    return StrCmpIW(outcome.Text(), TEXT("ok")) == 0;
}

HRESULT ReportFailure(const RunContext &run, const Item &item)
{
    bool isServiceError = false;
    const WideText words = ComposeReplyError(item.Reply.Get(), isServiceError);
    const HRESULT code = FAILED(item.Result) ? item.Result : E_FAIL;
    const auto log = isServiceError ? LogFatal : LogError;
    log(run.Host, LoadStringOrPlaceholder(IDS_LOG_ITEM_FAILED).c_str(), item.SourcePath.c_str(),
        static_cast<UINT32>(code), words.c_str());
    if (isServiceError)
    {
        return E_FAIL;
    }
    run.Progress->OnUploadProgress(ITEM_FAILED, 0, 0);
    return S_OK;
}
} // namespace

void PrepareRun(const RunContext &run)
{
    LoadSettings(run.Settings);
    LogInfo(run.Host, TEXT("%ls"), ModeText(run.Settings).c_str());
}

HRESULT PublishItem(const RunContext &run, const ItemRecord &record)
{
    Item item = ChooseForItem(record);
    UploadChosenFile(run, item);
    return HasSucceeded(item) ? S_OK : ReportFailure(run, item);
}
