#include <windows.h>
#include <initguid.h>

#include "tests/hostwindow/TrialPlugin_win32.h"

#include "HVRPublishToFlickr.h"
#include "HostContract.h"

#include "com/BstrOwner.h"
#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/HandleOwner.h"
#include "host/InitData.h"

#include <commctrl.h>

#include <atomic>

namespace
{
constexpr wchar_t Asks[] =
    L"The trial needs your leave before it can publish. <a id=\"authorize\" href=\"\">Authorize...</a>";
constexpr wchar_t Ready[] =
    L"Title, description, tags, public, safe, photos, searchable. Resample, send copyright, EXIF, "
    L"rating, GPS, IPTC data. <a id=\"settings\" href=\"parameters\">Settings...</a>";

HRESULT Give(BSTR *text, WideView words) noexcept
{
    return AtBoundary([&] {
        *text = BstrOwner(words).Detach();
        return S_OK;
    });
}

class TrialPlugin final : public ComObject<TrialPlugin, Answers<IHalvoraPublishingPlugin, IDispatch>>
{
public:
    STDMETHODIMP GetTypeInfoCount(UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *, UINT *) noexcept override
    {
        return E_NOTIMPL;
    }

    STDMETHODIMP Initialize(IUnknown *host, USHORT, IUnknown *stream, ULONG) noexcept override
    {
        return AtBoundary([&] {
            m_host = QueryFor<IHalvoraPublishingHost>(host);
            m_stream = QueryFor<IStream>(stream);
            char content[4096];
            ULONG count = 0;
            ThrowIfFailed(m_stream->Read(content, sizeof(content), &count));
            const auto account = ParseInitData({content, count});
            m_account = account.value_or(AccountData());
            return account ? S_OK : E_FAIL;
        });
    }

    STDMETHODIMP Terminate() noexcept override
    {
        return AtBoundary([&] {
            const std::string content = ComposeInitData(m_account);
            const LARGE_INTEGER start{};
            ThrowIfFailed(m_stream->Seek(start, STREAM_SEEK_SET, nullptr));
            ThrowIfFailed(m_stream->SetSize({}));
            return m_stream->Write(content.data(), static_cast<ULONG>(content.size()), nullptr);
        });
    }

    STDMETHODIMP GetCapabilities(HVRPUBLISHINGCAPABILITIES *capabilities) noexcept override
    {
        *capabilities = static_cast<HVRPUBLISHINGCAPABILITIES>(15);
        return S_OK;
    }

    STDMETHODIMP GetIcon(HICON *icon) noexcept override
    {
        *icon = LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_INFORMATION));
        return *icon != nullptr ? S_OK : E_FAIL;
    }

    STDMETHODIMP GetDisplayName(BSTR *text) noexcept override { return Give(text, L"Publish for trial"); }
    STDMETHODIMP GetDescription(BSTR *text) noexcept override { return Give(text, L"A trial"); }
    STDMETHODIMP GetAuthorInformation(BSTR *text) noexcept override { return Give(text, L"Nobody"); }
    STDMETHODIMP GetVersionInformation(BSTR *text) noexcept override { return Give(text, L"7.5 (Build 3)"); }
    STDMETHODIMP GetDisplayState(BSTR *text) noexcept override
    {
        return Give(text, m_account.IsAuthorized() ? Ready : Asks);
    }

    STDMETHODIMP Configure(HWND parent, LPWSTR verb, LPWSTR parameters) noexcept override
    {
        if (!IsWindow(parent) || verb == nullptr || parameters == nullptr)
        {
            return E_INVALIDARG;
        }
        return AtBoundary([&] {
            if (WideView(verb) == L"authorize")
            {
                m_account.token = L"trial-token";
                m_account.tokenSecret = L"trial-secret";
            }
            else if (WideView(verb) == L"settings")
            {
                m_account = {};
            }
            return S_OK;
        });
    }

    STDMETHODIMP Publish(HWND bar, HWND status) noexcept override
    {
        return AtBoundary([&] {
            INT32 count = 0;
            HGLOBAL list = nullptr;
            ThrowIfFailed(m_host->GetItemList(&count, &list));
            const auto *const items = static_cast<const UINT64 *>(GlobalLock(list));
            const GlobalLockOwner locked(list);
            m_wish = Wish::GoOn;
            SendMessageW(bar, PBM_SETRANGE32, 0, count * 100);
            for (INT32 i = 0; i < count && m_wish == Wish::GoOn; ++i)
            {
                SetWindowTextW(status,
                               (L"Picture " + std::to_wstring(i + 1) + L" of " + std::to_wstring(count)).c_str());
                SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(i) * 100 + 50, 0);
                PublishItem(items[i]);
            }
            static constexpr const wchar_t *ends[] = {L"Trial done.", L"Trial cancelled.", L"Trial stopped."};
            SetWindowTextW(status, ends[static_cast<int>(m_wish.load())]);
            return S_OK;
        });
    }

    STDMETHODIMP CanPublish(HWND, BOOL) noexcept override { return m_account.IsAuthorized() ? S_OK : S_FALSE; }

    STDMETHODIMP Cancel(BOOL abruptly) noexcept override
    {
        m_wish = abruptly ? Wish::Stop : Wish::Finish;
        return S_OK;
    }

private:
    enum class Wish
    {
        GoOn,
        Finish,
        Stop
    };

    void Log(INT32 level, const std::wstring &message) { m_host->WriteLogEntry(level, L"Trial", message.c_str()); }

    void PublishItem(UINT64 item)
    {
        ItemRecord record{};
        ThrowIfFailed(m_host->GetItemRecord(item, &record));
        const BstrOwner path = BstrOwner::Adopt(record.Path), extensions = BstrOwner::Adopt(record.Extensions);
        const std::wstring name(path.View());
        Log(LOG_LEVEL_VERBOSE, L"Extensions are " + std::wstring(extensions.View()));
        Log(LOG_LEVEL_INFO, L"Takes " + name);
        while (m_wish != Wish::Stop && WaitForSingleObject(m_next.Get(), 20) == WAIT_TIMEOUT)
        {
        }
        if (m_wish == Wish::Stop)
        {
            Log(LOG_LEVEL_ERROR, L"Stopped at " + name);
        }
        else if (name.find(L"bad") != std::wstring::npos)
        {
            Log(LOG_LEVEL_ERROR, L"Could not publish " + name + L" (0x80004005) The trial wants better pictures.");
        }
        else if (name.find(L"busy") != std::wstring::npos)
        {
            Log(LOG_LEVEL_ERROR,
                L"Could not publish " + name + L" (Error code: 0x801901ad) The service asks to wait 300 seconds");
        }
    }

    ComPtr<IHalvoraPublishingHost> m_host;
    ComPtr<IStream> m_stream;
    AccountData m_account;
    std::atomic<Wish> m_wish = Wish::GoOn;
    const FileOwner m_next{CreateEventW(nullptr, FALSE, FALSE, NextPicture)};
};

ClassFactory<TrialPlugin> factory;
} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void **object)
{
    return clsid == CLSID_TRIAL_PLUGIN ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow()
{
    return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
}
