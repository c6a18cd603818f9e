// The object that the host creates and calls: a shell that owns the state and lends each operation just the
// part that it needs.
#pragma once

#include "account/AccountRecord.h"
#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "core/NumberFormat.h"
#include "core/VersionBlock.h"
#include "plugin/DispatchSupport.h"
#include "publish/PublishStatistics.h"
#include "publish/RunContext.h"
#include "settings/SettingsStore.h"

#include "HVRPublishToFlickr.h"
#include "HostContract.h"
#include "WebComponents.h"

// Every interface pointer may be called from any thread of the process.
class CFlickrPublisher final : public ComObject<CFlickrPublisher, IUploadProgressCallback, ISupportErrorInfo,
                                                Answers<IHalvoraPublishingPlugin, IDispatch>>
{
public:
    CFlickrPublisher();

    HRESULT FinishCreation() noexcept;
    HRESULT QueryFurther(REFIID iid, void **object) noexcept;

    // IUploadProgressCallback
    STDMETHODIMP OnUploadProgress(UINT32 code, UINT32 total, UINT32 done) noexcept override;

    // ISupportErrorInfo
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) noexcept override;

    // IDispatch
    STDMETHODIMP GetTypeInfoCount(UINT *count) noexcept override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo **info) noexcept override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR *names, UINT count, LCID locale,
                               DISPID *ids) noexcept override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS *parameters,
                        VARIANT *result, EXCEPINFO *exception, UINT *argumentError) noexcept override;

    // IHalvoraPublishingPlugin
    STDMETHODIMP Initialize(IUnknown *lpHost, USHORT langid, IUnknown *lpStream, ULONG dwFlags) noexcept override;
    STDMETHODIMP Terminate() noexcept override;
    STDMETHODIMP GetCapabilities(HVRPUBLISHINGCAPABILITIES *lpCapabilities) noexcept override;
    STDMETHODIMP GetIcon(HICON *lphIcon) noexcept override;
    STDMETHODIMP GetDisplayName(BSTR *pbstrDisplayName) noexcept override;
    STDMETHODIMP GetDescription(BSTR *pbstrDescription) noexcept override;
    STDMETHODIMP GetAuthorInformation(BSTR *pbstrAuthorInformation) noexcept override;
    STDMETHODIMP GetVersionInformation(BSTR *pbstrVersionInformation) noexcept override;
    STDMETHODIMP GetDisplayState(BSTR *pbstrDisplayState) noexcept override;
    STDMETHODIMP Configure(HWND hWndParent, LPWSTR lpszVerb, LPWSTR lpszParameters) noexcept override;
    STDMETHODIMP Publish(HWND hWndProgressControl, HWND hWndStaticTextControl) noexcept override;
    STDMETHODIMP CanPublish(HWND hWndParent, BOOL fIncludeActualConnectivityCheck) noexcept override;
    STDMETHODIMP Cancel(BOOL fAbruptly) noexcept override;

private:
    // What the host handed over with Initialize, held until the object dies.
    struct Session
    {
        USHORT LanguageId = 0; // not consulted: the system chooses the language of a resource
        ComPtr<IStream> InitStream;
        ComPtr<IHalvoraPublishingHost> Host;
    };

    void AcceptHost(IUnknown *host);
    void AcceptStream(IUnknown *stream);
    bool IsInitialized() const noexcept { return m_session.Host && m_session.InitStream; }

    // The verbs of Configure.
    HRESULT AuthorizeAccount(HWND parent, IOAuthWebClient &client);
    HRESULT EditSettings(HWND parent, IOAuthWebClient &client);

    VersionBlock m_version;
    PublishStatistics m_statistics;
    LocaleNumberFormat m_numberFormat;
    ProgressWindows m_windows;
    Session m_session;
    CancelFlags m_cancel;
    AccountRecord m_account;
    SettingsBlock m_settings;
    DispatchSupport m_dispatch;
    ComPtr<IUnknown> m_marshaler;
};
