#include "plugin/FlickrPublisher.h"

#include "account/AccountQueries.h"
#include "account/AuthorizationDialogs.h"
#include "account/ProxyDiscovery.h"
#include "account/WebClientFactory.h"
#include "core/StringTable.h"
#include "core/ThisModule.h"
#include "plugin/InitDataStream.h"
#include "plugin/UsageMetrics.h"
#include "publish/ProgressReport.h"
#include "publish/PublishDriver.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "settings/StateLine.h"

#include <commctrl.h>
#include <shlwapi.h>

namespace
{
constexpr auto Capabilities =
    static_cast<HVRPUBLISHINGCAPABILITIES>(HVRPUBLISHINGCAPS_CONFIGURABLE | HVRPUBLISHINGCAPS_USES_INIT_DATA |
                                           HVRPUBLISHINGCAPS_CANCELABLE | HVRPUBLISHINGCAPS_AUTHORIZATION);

// Fills an out text with the result of make. Every failure is returned as the code thrown.
template <class Make>
HRESULT GiveText(BSTR *text, HRESULT thrown, Make &&make) noexcept
{
    if (text == nullptr)
    {
        return E_INVALIDARG;
    }
    *text = nullptr;
    return AtBoundaryAs(thrown, [&] {
        *text = BstrOwner(make()).Detach();
        return S_OK;
    });
}
} // namespace

CFlickrPublisher::CFlickrPublisher() : m_version(VersionBlock::OfThisModule()) {}

HRESULT CFlickrPublisher::FinishCreation() noexcept
{
    return CoCreateFreeThreadedMarshaler(ControllingUnknown(), m_marshaler.Put());
}

HRESULT CFlickrPublisher::QueryFurther(REFIID iid, void **object) noexcept
{
    if (iid == __uuidof(IMarshal) && m_marshaler)
    {
        return m_marshaler->QueryInterface(iid, object);
    }
    return E_NOINTERFACE;
}

// A report that can't be shown doesn't stop the upload: only an abrupt cancel does.
HRESULT CFlickrPublisher::OnUploadProgress(UINT32 code, UINT32 total, UINT32 done) noexcept
{
    AtBoundary([&] {
        ProgressDisplay display{m_windows, m_statistics, m_numberFormat, SystemTicks};
        ShowProgress(display, code, total, done);
        return S_OK;
    });
    return m_cancel.CancelAbruptly ? E_ABORT : S_OK;
}

HRESULT CFlickrPublisher::InterfaceSupportsErrorInfo(REFIID iid) noexcept
{
    return iid == __uuidof(IHalvoraPublishingPlugin) ? S_OK : S_FALSE;
}

HRESULT CFlickrPublisher::GetTypeInfoCount(UINT *count) noexcept
{
    return m_dispatch.GetTypeInfoCount(count);
}

HRESULT CFlickrPublisher::GetTypeInfo(UINT index, LCID, ITypeInfo **info) noexcept
{
    return m_dispatch.GetTypeInfo(index, info);
}

HRESULT CFlickrPublisher::GetIDsOfNames(REFIID reserved, LPOLESTR *names, UINT count, LCID, DISPID *ids) noexcept
{
    return m_dispatch.GetIDsOfNames(reserved, names, count, ids);
}

HRESULT CFlickrPublisher::Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS *parameters,
                                 VARIANT *result, EXCEPINFO *exception, UINT *argumentError) noexcept
{
    return m_dispatch.Invoke(static_cast<IHalvoraPublishingPlugin *>(this), reserved, id, flags, parameters,
                             result, exception, argumentError);
}

void CFlickrPublisher::AcceptHost(IUnknown *host)
{
    if (host != m_session.Host.Get())
    {
        m_session.Host = QueryFor<IHalvoraPublishingHost>(host);
    }
    if (!m_session.Host)
    {
        ThrowHresult(E_INVALIDARG);
    }
}

void CFlickrPublisher::AcceptStream(IUnknown *stream)
{
    if (stream != m_session.InitStream.Get())
    {
        m_session.InitStream = QueryFor<IStream>(stream);
    }
}

HRESULT CFlickrPublisher::Initialize(IUnknown *lpHost, USHORT langid, IUnknown *lpStream, ULONG) noexcept
{
    if (lpHost == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        AcceptHost(lpHost);
        m_session.LanguageId = langid;
        AcceptStream(lpStream);
        if (m_session.InitStream)
        {
            ReadInitData(m_session.InitStream.Get(), m_account);
        }
        CreateUsageMetrics();
        return S_OK;
    });
}

HRESULT CFlickrPublisher::Terminate() noexcept
{
    if (!m_session.InitStream)
    {
        return S_OK;
    }
    return AtBoundary([&] {
        WriteInitData(m_session.InitStream.Get(), m_account);
        gUsageMetrics.Reset();
        return S_OK;
    });
}

HRESULT CFlickrPublisher::GetCapabilities(HVRPUBLISHINGCAPABILITIES *lpCapabilities) noexcept
{
    if (lpCapabilities == nullptr)
    {
        return E_INVALIDARG;
    }
    *lpCapabilities = Capabilities;
    return S_OK;
}

HRESULT CFlickrPublisher::GetIcon(HICON *lphIcon) noexcept
{
    if (lphIcon == nullptr)
    {
        return E_INVALIDARG;
    }
    *lphIcon = LoadIconW(ThisModule(), MAKEINTRESOURCEW(IDI_PUBLISHER));
    return *lphIcon ? S_OK : E_FAIL;
}

HRESULT CFlickrPublisher::GetDisplayName(BSTR *pbstrDisplayName) noexcept
{
    if (pbstrDisplayName == nullptr)
    {
        return E_INVALIDARG;
    }
    *pbstrDisplayName = nullptr;
    return AtBoundaryAs(E_POINTER, [&] {
        BstrOwner name;
        const bool isFound = LoadStringResource(IDS_DISPLAY_NAME, name);
        *pbstrDisplayName = name.Detach();
        return isFound ? S_OK : E_FAIL;
    });
}

HRESULT CFlickrPublisher::GetDescription(BSTR *pbstrDescription) noexcept
{
    return GiveText(pbstrDescription, E_POINTER, [&] { return m_version.String(TEXT("FileDescription")); });
}

HRESULT CFlickrPublisher::GetAuthorInformation(BSTR *pbstrAuthorInformation) noexcept
{
    return GiveText(pbstrAuthorInformation, E_POINTER, [&] { return m_version.String(TEXT("LegalCopyright")); });
}

HRESULT CFlickrPublisher::GetVersionInformation(BSTR *pbstrVersionInformation) noexcept
{
    return GiveText(pbstrVersionInformation, E_UNEXPECTED, [&] { return m_version.String(TEXT("FileVersion")); });
}

HRESULT CFlickrPublisher::GetDisplayState(BSTR *pbstrDisplayState) noexcept
{
    return GiveText(pbstrDisplayState, E_UNEXPECTED, [&] { return ComposeDisplayState(m_account, m_settings); });
}

HRESULT CFlickrPublisher::Configure(HWND hWndParent, LPWSTR lpszVerb, LPWSTR lpszParameters) noexcept
{
    if (!IsInitialized())
    {
        return E_UNEXPECTED;
    }
    if (hWndParent == nullptr || lpszVerb == nullptr || lpszParameters == nullptr)
    {
        return E_INVALIDARG;
    }
    static constexpr struct
    {
        const WCHAR *Name;
        HRESULT (CFlickrPublisher::*Run)(HWND parent, IOAuthWebClient &client);
    } verbs[] = {
        {TEXT("authorize"), &CFlickrPublisher::AuthorizeAccount},
        {TEXT("settings"), &CFlickrPublisher::EditSettings},
    };
    return AtBoundary([&] {
        // Every verb needs a client that could be made, whether it uses it or not.
        const auto client = CreateWebClient(m_account, m_version);
        if (!client)
        {
            return E_UNEXPECTED;
        }
        for (const auto &verb : verbs)
        {
            if (StrCmpIW(lpszVerb, verb.Name) == 0)
            {
                return (this->*verb.Run)(hWndParent, *client.Get());
            }
        }
        return S_OK;
    });
}

HRESULT CFlickrPublisher::AuthorizeAccount(HWND parent, IOAuthWebClient &client)
{
    AuthorizationDialogs dialogs;
    return Authorize({m_account, m_version, client, parent, dialogs, SystemPause, DiscoverSystemProxy});
}

HRESULT CFlickrPublisher::EditSettings(HWND parent, IOAuthWebClient &)
{
    SheetAccount shown{m_account, m_version.String(TEXT("FileVersion")), m_version.String(TEXT("LegalCopyright")),
                       [this] { return RefreshAccount(m_account, m_version); }};
    const SheetOutcome outcome = ShowSettingsSheet(parent, shown);
    if (!outcome.Applied)
    {
        return S_OK;
    }
    if (IsWindow(m_windows.ProgressWindow))
    {
        SendMessageW(m_windows.ProgressWindow, PBM_SETPOS, 0, 0);
        SendMessageW(m_windows.ProgressWindow, PBM_SETSTATE, PBST_NORMAL, 0);
    }
    if (!outcome.RevokeRequested)
    {
        return S_OK;
    }
    // No request is sent: at the service the token stays valid until the user withdraws it there.
    m_account.OAuthToken.Reset();
    m_account.OAuthTokenSecret.Reset();
    return S_FALSE;
}

HRESULT CFlickrPublisher::Publish(HWND hWndProgressControl, HWND hWndStaticTextControl) noexcept
{
    if (!IsInitialized())
    {
        return E_UNEXPECTED;
    }
    if (hWndProgressControl == nullptr || hWndStaticTextControl == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const ComPtr<IUsageMetrics> usage = gUsageMetrics;
        const RunContext run{m_session.Host.Get(), usage.Get(), this,     m_account,   m_version,  m_settings,
                             m_statistics,         m_windows,   m_cancel, SystemTicks, SystemPause};
        RunPublish(run, hWndProgressControl, hWndStaticTextControl);
        return S_OK;
    });
}

HRESULT CFlickrPublisher::CanPublish(HWND, BOOL fIncludeActualConnectivityCheck) noexcept
{
    if (!IsInitialized())
    {
        return E_UNEXPECTED;
    }
    return AtBoundary(
        [&] { return AnswerCanPublish(m_account, m_version, fIncludeActualConnectivityCheck != FALSE); });
}

HRESULT CFlickrPublisher::Cancel(BOOL fAbruptly) noexcept
{
    RequestCancel(m_session.Host.Get(), m_cancel, fAbruptly != FALSE);
    return S_OK;
}
