#include "host/PluginSession.h"

#include "tests/host/ProfileFixture.h"

#include "com/ClassFactory.h"
#include "com/ComObject.h"

#include <gmock/gmock.h>

#include <objbase.h>

namespace
{
// What the plug-in of a test does, and what it met.
struct Script
{
    std::string refused; // content that Initialize fails with
    std::string gives;   // written at Terminate
    HRESULT ending = S_OK;
    std::vector<std::string> got;
};
Script *script = nullptr;

class ScriptedPlugin final : public ComObject<ScriptedPlugin, Answers<IHalvoraPublishingPlugin, IDispatch>>
{
public:
    STDMETHODIMP Initialize(IUnknown *, USHORT, IUnknown *stream, ULONG) noexcept override
    {
        m_stream = QueryFor<IStream>(stream);
        char content[4096];
        ULONG count = 0;
        m_stream->Read(content, sizeof(content), &count);
        script->got.emplace_back(content, count);
        return !script->refused.empty() && script->got.back() == script->refused ? E_INVALIDARG : S_OK;
    }

    STDMETHODIMP Terminate() noexcept override
    {
        m_stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
        m_stream->SetSize(ULARGE_INTEGER{});
        m_stream->Write(script->gives.data(), static_cast<ULONG>(script->gives.size()), nullptr);
        m_stream.Reset();
        return script->ending;
    }

    STDMETHODIMP GetTypeInfoCount(UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *, UINT *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetCapabilities(HVRPUBLISHINGCAPABILITIES *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIcon(HICON *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayName(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDescription(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetAuthorInformation(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetVersionInformation(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayState(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Configure(HWND, LPWSTR, LPWSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Publish(HWND, HWND) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CanPublish(HWND, BOOL) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Cancel(BOOL) noexcept override { return E_NOTIMPL; }

private:
    ComPtr<IStream> m_stream;
};

class PluginSessionTest : public ProfileTest
{
protected:
    PluginSessionTest()
    {
        script = &m_script;
        EXPECT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
        EXPECT_EQ(CoRegisterClassObject(__uuidof(FlickrPublisher), &m_factory, CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &m_registration),
                  S_OK);
    }
    ~PluginSessionTest() override
    {
        CoRevokeClassObject(m_registration);
        CoUninitialize();
    }

    Script m_script;

private:
    ClassFactory<ScriptedPlugin> m_factory;
    DWORD m_registration = 0;
};
} // namespace

TEST_F(PluginSessionTest, RefusedDataIsSetAsideAndThePluginGetsNone)
{
    const std::string refused = AccountOf(TEXT("refused"));
    m_folder.Write("profile/init-data.bin", refused);
    m_store.Load();
    m_script.refused = refused;
    m_script.gives = ComposeInitData(AccountData());
    EXPECT_EQ(PluginSession(nullptr, m_store).Finish(), StoreOutcome::Unchanged)
        << "an account that was never set";
    EXPECT_THAT(m_script.got, testing::ElementsAre(refused, ""));
    EXPECT_EQ(m_folder.Read("profile/init-data.bin.damaged-1"), refused);
    EXPECT_FALSE(std::filesystem::exists(m_profile.InitDataFile()));
}

TEST_F(PluginSessionTest, HalfWrittenDataIsNotStored)
{
    m_folder.Write("profile/init-data.bin", AccountOf(TEXT("old")));
    m_store.Load();
    m_script.gives = "half";
    m_script.ending = E_FAIL;
    PluginSession session(nullptr, m_store);
    EXPECT_ANY_THROW(session.Finish());
    EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
}

TEST_F(PluginSessionTest, WhatAnotherProcessStoredGivesWayToAnOrderAlone)
{
    m_store.Load();
    m_folder.Write("profile/init-data.bin", AccountOf(TEXT("other")));
    m_script.gives = AccountOf(TEXT("mine"));
    EXPECT_EQ(PluginSession(nullptr, m_store).Finish(), StoreOutcome::KeptNewer);
    EXPECT_EQ(Kept(), AccountOf(TEXT("other")));
    EXPECT_EQ(PluginSession(nullptr, m_store).Finish(Storing::Always), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(TEXT("mine")));
}
