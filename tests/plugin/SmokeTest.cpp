// The product as a host loads it: the module by its file, the object by the class factory, a stream of
// the system's own, the user's registry key, and fakes in place of the web components.
#include "com/ComPtr.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/doubles/SystemModules.h"

#include <gtest/gtest.h>

#include <objbase.h>
#include <olectl.h>

namespace
{
template <class Function>
Function *Exported(HMODULE module, const char *name)
{
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}
} // namespace

TEST(Smoke, PublishesThroughTheModule)
{
    PublishFixture fixture;
    fixture.AddItem("one", TEXT("jpg"), JpegBytes);
    fixture.AddItem("two", TEXT("gif"), GifBytes);
    fixture.Web.Answer(OkReply);
    fixture.Web.Answer(OkReply);

    const HMODULE module = LoadLibraryW(std::filesystem::path(HALVORA_MODULE).string<WCHAR>().c_str());
    ASSERT_NE(module, nullptr) << GetLastError();
    const auto getClassObject =
        Exported<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void **)>(module, "DllGetClassObject");
    const auto canUnload = Exported<HRESULT STDAPICALLTYPE()>(module, "DllCanUnloadNow");
    ASSERT_TRUE(getClassObject && canUnload);
    EXPECT_EQ(canUnload(), S_OK);
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(getClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), nullptr), E_POINTER);
    EXPECT_EQ(getClassObject(CLSID_UsageMetrics, __uuidof(IClassFactory), factory.PutVoid()),
              CLASS_E_CLASSNOTAVAILABLE);
    ASSERT_EQ(getClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
    ComPtr<IHalvoraPublishingPlugin> plugin;
    ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), plugin.PutVoid()), S_OK);
    factory.Reset();
    EXPECT_EQ(canUnload(), S_FALSE);

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
    plugin.Reset();
    EXPECT_EQ(canUnload(), S_OK);
}

TEST(Smoke, AnswersScriptsFromTheTypeLibrary)
{
    const HMODULE module = LoadLibraryW(std::filesystem::path(HALVORA_MODULE).string<WCHAR>().c_str());
    ASSERT_NE(module, nullptr);
    const auto getClassObject =
        Exported<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void **)>(module, "DllGetClassObject");
    ASSERT_TRUE(getClassObject);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(getClassObject(CLSID_FlickrPublisher, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
    ComPtr<IDispatch> plugin;
    ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(IDispatch), plugin.PutVoid()), S_OK);

    WideText publish = TEXT("publish");
    LPOLESTR name = publish.data();
    DISPID id = 0;
    EXPECT_EQ(plugin->GetIDsOfNames(IID{}, &name, 1, 0x409, &id), S_OK);
    EXPECT_EQ(id, 11);
    DISPPARAMS none{};
    // Terminate, which has nothing to do without a stream.
    EXPECT_EQ(plugin->Invoke(2, IID{}, 0x409, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(plugin->Invoke(99, IID{}, 0x409, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
}
