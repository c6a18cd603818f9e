// The product as a host loads it: the module by its file, the object by the class factory, a stream of
// the system's own, the user's registry key, and fakes in place of the web components.
#include "com/ComPtr.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/platform/KnownGaps.h"

#include <gtest/gtest.h>

#include <objbase.h>
#include <olectl.h>

namespace
{
class Smoke : public testing::Test
{
protected:
    void SetUp() override
    {
        const HMODULE module = LoadLibraryW(std::filesystem::path(HALVORA_MODULE).string<WCHAR>().c_str());
        ASSERT_NE(module, nullptr) << GetLastError();
        Find(module, "DllGetClassObject", GetClassObject);
        Find(module, "DllCanUnloadNow", CanUnload);
        ASSERT_TRUE(GetClassObject && CanUnload);
        EXPECT_EQ(CanUnload(), S_OK);
    }
    void TearDown() override { EXPECT_EQ(CanUnload(), S_OK); }

    template <class Function>
    static void Find(HMODULE module, const char *name, Function *&function)
    {
        function = reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
    }

    ComPtr<IClassFactory> Factory() const
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(GetClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
        return factory;
    }

    HRESULT(STDAPICALLTYPE *GetClassObject)(REFCLSID, REFIID, void **) = nullptr;
    HRESULT(STDAPICALLTYPE *CanUnload)() = nullptr;
};
} // namespace

TEST_F(Smoke, PublishesThroughTheModule)
{
    PublishFixture fixture;
    fixture.AddItem("one", TEXT("jpg"), JpegBytes);
    fixture.AddItem("two", TEXT("gif"), GifBytes);
    fixture.Web.Answer(OkReply);
    fixture.Web.Answer(OkReply);
    ComPtr<IHalvoraPublishingPlugin> plugin;
    ASSERT_EQ(Factory()->CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), plugin.PutVoid()), S_OK);

    ComPtr<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
    const std::string data = PublishFixture::AuthorizedInitData();
    ASSERT_EQ(stream->Write(data.data(), static_cast<ULONG>(data.size()), nullptr), S_OK);
    ASSERT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), S_OK);
    ASSERT_EQ(plugin->Initialize(fixture.Host.Get(), 1033, stream.Get(), 0), S_OK);
    EXPECT_EQ(plugin->CanPublish(nullptr, FALSE), S_OK);
    EXPECT_EQ(plugin->Publish(fixture.Windows.Bar(), fixture.Windows.StatusText()), S_OK);
    EXPECT_EQ(fixture.Record.LinesOf("status ").back(), "Done.");
    EXPECT_TRUE(fixture.Record.LinesOf("log error ").empty());
    EXPECT_EQ(fixture.Web.FileParts, (std::vector<std::string>{std::string(JpegBytes), std::string(GifBytes)}));

    EXPECT_EQ(plugin->Terminate(), S_OK);
    STATSTG status{};
    ASSERT_EQ(stream->Stat(&status, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(status.cbSize.QuadPart, data.size());
}

TEST_F(Smoke, LocksCountObjectsFactoriesAndExplicitLocks)
{
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(GetClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), nullptr), E_POINTER);
    EXPECT_EQ(GetClassObject(CLSID_UsageMetrics, __uuidof(IClassFactory), factory.PutVoid()),
              CLASS_E_CLASSNOTAVAILABLE);
    factory = Factory();
    EXPECT_EQ(CanUnload(), S_FALSE);
    EXPECT_EQ(Factory().Get(), factory.Get()) << "made once and kept";
    ComPtr<IUnknown> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IUnknown), object.PutVoid()), S_OK);
    factory.Reset();
    EXPECT_EQ(CanUnload(), S_FALSE);
    factory = Factory();
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    object.Reset();
    EXPECT_EQ(CanUnload(), S_FALSE);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
}

TEST_F(Smoke, AnswersScriptsFromTheTypeLibraryIfThereIsOne)
{
    ComPtr<IDispatch> plugin;
    ASSERT_EQ(Factory()->CreateInstance(nullptr, __uuidof(IDispatch), plugin.PutVoid()), S_OK);

    WideText publish = TEXT("publish");
    LPOLESTR name = publish.data();
    DISPID id = 0;
    EXPECT_EQ(plugin->GetIDsOfNames(IID{}, &name, 1, 0x409, &id), IsWindowsBuild ? S_OK : TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(id, IsWindowsBuild ? 11 : 0);
    DISPPARAMS none{};
    // Terminate, which has nothing to do without a stream.
    EXPECT_EQ(plugin->Invoke(2, IID{}, 0x409, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              IsWindowsBuild ? S_OK : TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(plugin->Invoke(99, IID{}, 0x409, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              IsWindowsBuild ? DISP_E_MEMBERNOTFOUND : TYPE_E_CANTLOADLIBRARY);
}
