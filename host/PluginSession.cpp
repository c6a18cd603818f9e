#include "host/PluginSession.h"

#include "host/InitData.h"

#include "com/ComObject.h"
#include "com/Hresult.h"
#include "core/TextPieces.h"

namespace
{
// What a stream holds, from its start.
std::string ReadStream(IStream *stream)
{
    LARGE_INTEGER start = {};
    ThrowIfFailed(stream->Seek(start, STREAM_SEEK_SET, nullptr));
    std::string content;
    char part[4096];
    for (;;)
    {
        ULONG count = 0;
        ThrowIfFailed(stream->Read(part, sizeof(part), &count));
        content.append(part, count);
        if (count < sizeof(part))
        {
            return content;
        }
    }
}

ComPtr<IStream> MakeStream(const std::string &content)
{
    ComPtr<IStream> stream;
    ThrowIfFailed(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
    ULONG written = 0;
    LARGE_INTEGER start = {};
    if (!content.empty())
    {
        ThrowIfFailed(stream->Write(content.data(), static_cast<ULONG>(content.size()), &written));
    }
    ThrowIfFailed(stream->Seek(start, STREAM_SEEK_SET, nullptr));
    return stream;
}

// Its "new" objects are the one observer.
class ObserverFactory final : public ComObject<ObserverFactory, IClassFactory>
{
public:
    explicit ObserverFactory(IUploadObserver &observer) : m_observer(&observer) {}

    STDMETHODIMP CreateInstance(IUnknown *outer, REFIID iid, void **object) noexcept override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : m_observer->QueryInterface(iid, object);
    }
    STDMETHODIMP LockServer(BOOL) noexcept override { return S_OK; }

private:
    const ComPtr<IUploadObserver> m_observer;
};
} // namespace

Storing StoringAfter(WideView verb, HRESULT result)
{
    const bool isAuthorization = EqualsIgnoringCase(verb, TEXT("authorize"));
    // S_FALSE: the authorization was cancelled, or the settings revoked it.
    return isAuthorization == (result == S_FALSE) ? Storing::UnlessNewer : Storing::Always;
}

PluginSession::PluginSession(IUnknown *host, InitDataStore &store, const CLSID &plugin) : m_store(store)
{
    ThrowIfFailed(CoCreateInstance(plugin, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IHalvoraPublishingPlugin),
                                   m_plugin.PutVoid()));
    if (SUCCEEDED(Initialize(host, store.Content())))
    {
        return;
    }
    if (!store.Content().empty())
    {
        store.SetAsideDamaged();
    }
    ThrowIfFailed(Initialize(host, std::string()));
}

HRESULT PluginSession::Initialize(IUnknown *host, const std::string &content)
{
    m_stream = MakeStream(content);
    return m_plugin->Initialize(host, LANG_NEUTRAL, m_stream.Get(), 0);
}

StoreOutcome PluginSession::Finish(Storing storing)
{
    // Half-written data are never stored.
    ThrowIfFailed(m_plugin->Terminate());
    const std::string content = ReadStream(m_stream.Get());
    // An account that was never set is no reason to make a file.
    if (m_store.Content().empty() && content == ComposeInitData(AccountData()))
    {
        return StoreOutcome::Unchanged;
    }
    if (storing == Storing::UnlessNewer || content == m_store.Content())
    {
        return m_store.Store(content);
    }
    m_store.Overwrite(content);
    return StoreOutcome::Stored;
}

UploadObservation::UploadObservation(IUploadObserver &observer) noexcept
{
    AtBoundary([&] {
        return CoRegisterClassObject(CLSID_UploadObserver, ObserverFactory::Make(observer).Get(),
                                     CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    });
}

UploadObservation::~UploadObservation()
{
    if (m_cookie != 0)
    {
        CoRevokeClassObject(m_cookie);
    }
}
