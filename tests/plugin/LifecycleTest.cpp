// The object outside a run, as COM and the host use it.
#include "com/BstrOwner.h"
#include "com/ModuleLocks.h"
#include "core/ThisModule.h"
#include "plugin/FlickrModule.h"
#include "plugin/FlickrPublisher.h"
#include "plugin/UsageMetrics.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/platform/KnownGaps.h"

#include <gmock/gmock.h>

namespace
{
using Plugin = ComPtr<IHalvoraPublishingPlugin>;

Plugin CreatePlugin()
{
    Plugin plugin;
    EXPECT_EQ(CFlickrPublisher::CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), plugin.PutVoid()),
              S_OK);
    return plugin;
}

// An outer object without interfaces of its own.
class Outer final : public ComObject<Outer, IProvideClassInfo>
{
public:
    ComPtr<IUnknown> Inner;

    HRESULT QueryFurther(REFIID iid, void **object) noexcept { return Inner->QueryInterface(iid, object); }
    STDMETHODIMP GetClassInfo(ITypeInfo **) noexcept override { return E_NOTIMPL; }
};
} // namespace

TEST(Lifecycle, TellsWhoItIs)
{
    using Text = HRESULT (STDMETHODCALLTYPE IHalvoraPublishingPlugin::*)(BSTR *);
    const std::pair<Text, testing::Matcher<std::string>> cases[] = {
        {&IHalvoraPublishingPlugin::GetDisplayName, "Publish to Flickr"},
        {&IHalvoraPublishingPlugin::GetDescription, "Halvora Publish to Flickr Component"},
        {&IHalvoraPublishingPlugin::GetVersionInformation, "1.96 (Build 401)"},
        {&IHalvoraPublishingPlugin::GetAuthorInformation, testing::StartsWith("Copyright \xC2\xA9 2026 ")},
        {&IHalvoraPublishingPlugin::GetDisplayState, testing::HasSubstr("<a id=\"authorize\"")},
    };
    const Plugin plugin = CreatePlugin();
    for (const auto &[operation, expected] : cases)
    {
        BstrOwner text;
        EXPECT_EQ((plugin.Get()->*operation)(text.Put()), S_OK);
        EXPECT_THAT(Narrow(text.View()), expected);
        EXPECT_EQ((plugin.Get()->*operation)(nullptr), E_INVALIDARG);
    }
    HVRPUBLISHINGCAPABILITIES capabilities{};
    EXPECT_EQ(plugin->GetCapabilities(&capabilities), S_OK);
    EXPECT_EQ(capabilities, 15);
    HICON icon = nullptr;
    EXPECT_EQ(plugin->GetIcon(&icon), S_OK);
    EXPECT_NE(icon, nullptr);
    EXPECT_EQ(plugin->GetCapabilities(nullptr), E_INVALIDARG);
    EXPECT_EQ(plugin->GetIcon(nullptr), E_INVALIDARG);
}

TEST(Lifecycle, AnswersItsInterfacesAndLeavesNothingBehind)
{
    const long locks = ModuleLocks::Read();
    {
        const Plugin plugin = CreatePlugin();
        EXPECT_EQ(ModuleLocks::Read(), locks + 1);
        const auto identity = plugin.As<IUnknown>();
        for (const IID &iid : {__uuidof(IDispatch), __uuidof(IHalvoraPublishingPlugin),
                               __uuidof(ISupportErrorInfo), __uuidof(IUploadProgressCallback), __uuidof(IMarshal)})
        {
            ComPtr<IUnknown> face;
            ASSERT_EQ(plugin->QueryInterface(iid, face.PutVoid()), S_OK);
            EXPECT_EQ(face.As<IUnknown>().Get(), identity.Get());
        }
        ComPtr<IUnknown> none;
        EXPECT_EQ(plugin->QueryInterface(__uuidof(IPersist), none.PutVoid()), E_NOINTERFACE);
        EXPECT_FALSE(none);
        const auto errors = plugin.As<ISupportErrorInfo>();
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(__uuidof(IHalvoraPublishingPlugin)), S_OK);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(__uuidof(IDispatch)), S_FALSE);
        UINT count = 0;
        EXPECT_EQ(plugin->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, IsWindowsBuild ? 1u : 0u) << "natively there is no type library";
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(plugin->GetTypeInfo(1, 0, info.Put()), DISP_E_BADINDEX);
        EXPECT_EQ(plugin->GetTypeInfo(1, 0, nullptr), E_INVALIDARG);
        EXPECT_EQ(plugin->GetTypeInfoCount(nullptr), E_INVALIDARG);
    }
    EXPECT_EQ(ModuleLocks::Read(), locks);
}

TEST(Lifecycle, CanBeAggregated)
{
    const long locks = ModuleLocks::Read();
    {
        const auto outer = Outer::Make();
        CFlickrModule module(ThisModule());
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(module.GetClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
        void *face = nullptr;
        EXPECT_EQ(factory->CreateInstance(outer.Get(), __uuidof(IDispatch), &face), CLASS_E_NOAGGREGATION);
        ASSERT_EQ(factory->CreateInstance(outer.Get(), __uuidof(IUnknown), outer->Inner.PutVoid()), S_OK);
        for (const IID &iid : {__uuidof(IHalvoraPublishingPlugin), __uuidof(ISupportErrorInfo),
                               __uuidof(IUploadProgressCallback), __uuidof(IMarshal)})
        {
            ComPtr<IUnknown> part;
            ASSERT_EQ(outer->QueryInterface(iid, part.PutVoid()), S_OK);
            EXPECT_EQ(part.As<IUnknown>().Get(), outer.As<IUnknown>().Get());
            EXPECT_TRUE(part.As<IProvideClassInfo>());
        }
    }
    EXPECT_EQ(ModuleLocks::Read(), locks);
}

TEST(Lifecycle, AModuleThatIsNotSetUpGivesNoClassObject)
{
    CFlickrModule module(nullptr);
    void *factory = &module;
    EXPECT_EQ(module.GetClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), nullptr), E_POINTER);
    EXPECT_EQ(module.GetClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), &factory), E_UNEXPECTED);
    EXPECT_EQ(factory, nullptr);
}

TEST(Lifecycle, ChecksTheHostAndTakesItOnce)
{
    PublishFixture fixture;
    const Plugin plugin = CreatePlugin();
    EXPECT_EQ(plugin->Initialize(nullptr, 0, fixture.Stream.Get(), 0), E_INVALIDARG);
    EXPECT_EQ(plugin->Initialize(fixture.Stream.Get(), 0, fixture.Stream.Get(), 0), E_INVALIDARG);
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, nullptr, 0), S_OK);
    const size_t calls = fixture.Stream->Calls.Lines().size();
    EXPECT_EQ(plugin->Terminate(), S_OK);
    EXPECT_EQ(fixture.Stream->Calls.Lines().size(), calls) << "no stream, nothing written";
    EXPECT_TRUE(gUsageMetrics);
    EXPECT_EQ(plugin->Publish(fixture.Windows.Bar(), fixture.Windows.StatusText()), E_UNEXPECTED);

    // What is no host or no stream lets go of the one before.
    const std::pair<IUnknown *, IUnknown *> others[] = {{fixture.Host.Get(), fixture.Host.Get()},
                                                        {fixture.Host.Get(), nullptr},
                                                        {fixture.Stream.Get(), fixture.Stream.Get()}};
    for (const auto &[host, stream] : others)
    {
        EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
        EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), S_OK);
        EXPECT_EQ(plugin->Initialize(host, 0, stream, 0), host == fixture.Host.Get() ? S_OK : E_INVALIDARG);
        EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), E_UNEXPECTED);
    }

    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
    EXPECT_EQ(plugin->Initialize(nullptr, 0, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), S_OK) << "no host at all changes nothing";
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, nullptr, 0), S_OK);
    fixture.Host->AddRef();
    const ULONG references = fixture.Host->Release();
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
    fixture.Host->AddRef();
    EXPECT_EQ(fixture.Host->Release(), references);
    EXPECT_EQ(plugin->Terminate(), S_OK);
    EXPECT_FALSE(gUsageMetrics);
    EXPECT_EQ(fixture.Stream->Content, PublishFixture::AuthorizedInitData());
}

TEST(Lifecycle, AFailingStreamKeepsHostAndCounterAsTheyWere)
{
    PublishFixture fixture;
    const Plugin plugin = CreatePlugin();
    fixture.Stream->Content.resize(10);
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), E_FAIL);
    EXPECT_FALSE(gUsageMetrics);
    EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), S_FALSE) << "initialized, not authorized";

    fixture.Stream->Content = PublishFixture::AuthorizedInitData();
    fixture.Stream->Position = 0;
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
    fixture.Stream->Calls.FailCall(1, STG_E_ACCESSDENIED);
    EXPECT_EQ(plugin->Terminate(), STG_E_ACCESSDENIED);
    EXPECT_TRUE(gUsageMetrics);
    EXPECT_EQ(plugin->Terminate(), S_OK);
    EXPECT_FALSE(gUsageMetrics);
    EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), S_OK) << "host, stream and account stay";
}

TEST(Lifecycle, ConfigureChecksBeforeItLooksAtTheVerb)
{
    PublishFixture fixture;
    const Plugin plugin = CreatePlugin();
    WCHAR text[] = TEXT("other");
    const HWND window = fixture.Windows.Bar();
    EXPECT_EQ(plugin->Configure(window, text, text), E_UNEXPECTED);
    ASSERT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
    EXPECT_EQ(plugin->Configure(nullptr, text, text), E_INVALIDARG);
    EXPECT_EQ(plugin->Configure(window, nullptr, text), E_INVALIDARG);
    EXPECT_EQ(plugin->Configure(window, text, nullptr), E_INVALIDARG);
    WCHAR empty[] = TEXT("");
    EXPECT_EQ(plugin->Configure(window, text, empty), S_OK) << "an unknown verb has no effect";
    EXPECT_EQ(plugin->Configure(window, empty, empty), S_OK);
    EXPECT_TRUE(fixture.Web.CallsOf("GetAuthorizationUrl").empty());
    fixture.Web.FailOperation("SetService", E_FAIL);
    EXPECT_EQ(plugin->Configure(window, text, text), E_UNEXPECTED);
    EXPECT_EQ(plugin->Terminate(), S_OK);
}

TEST(Lifecycle, CanPublishAsksTheServiceOnlyIfItIsTold)
{
    const std::string noPair(33, '\0');
    const std::string halfPair = std::string("\1\4\0\0\0t\0\0\0", 9) + std::string(5 * 4 + 8, '\0');
    const std::string pair = PublishFixture::AuthorizedInitData();
    const std::string someLeft =
        "ok'><user ispro='0'><filesize maxbytes='9'/><bandwidth maxbytes='10' usedbytes='9'/>";
    const std::string usedUp =
        "ok'><user ispro='0'><filesize maxbytes='9'/><bandwidth maxbytes='10' usedbytes='10'/>";
    const std::string pro = "ok'><user ispro='1'><filesize maxbytes='9'/>";
    const struct
    {
        std::string account;
        BOOL withCheck;
        std::string reply; // "": nothing may be asked
        HRESULT result;
    } cases[] = {
        {noPair, FALSE, "", S_FALSE},  {halfPair, FALSE, "", S_FALSE},        {halfPair, TRUE, "", S_FALSE},
        {pair, FALSE, "", S_OK},       {pair, TRUE, someLeft, S_OK},          {pair, TRUE, pro, S_OK},
        {pair, TRUE, usedUp, S_FALSE}, {pair, TRUE, "fail'><user>", S_FALSE},
    };
    PublishFixture fixture;
    EXPECT_EQ(CreatePlugin()->CanPublish(nullptr, FALSE), E_UNEXPECTED);
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        const Plugin plugin = CreatePlugin();
        fixture.Stream = MemoryStream::Make(c.account);
        ASSERT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
        fixture.Web.Clear();
        if (!c.reply.empty())
        {
            const std::string xml = "<rsp stat='" + c.reply + "</user></rsp>";
            fixture.Web.Answer(WideText(xml.begin(), xml.end()));
        }
        EXPECT_EQ(plugin->CanPublish(nullptr, c.withCheck), c.result);
        EXPECT_EQ(fixture.Web.CallsOf("RestRequest").size(), c.reply.empty() ? 0u : 1u);
        if (c.result == S_OK && c.withCheck)
        {
            fixture.Web.AnswerWith(E_FAIL, nullptr);
            EXPECT_EQ(plugin->CanPublish(nullptr, TRUE), S_FALSE) << "whatever is known of the allowance";
        }
        EXPECT_EQ(plugin->Terminate(), S_OK);
    }
}
