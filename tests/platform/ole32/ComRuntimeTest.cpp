#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <gmock/gmock.h>
#include <objbase.h>
#include <objidl.h>

#include <thread>

namespace
{
const CLSID TestClass = {0x5d1f3c0a, 0x6f5e, 0x4a6b, {0x91, 0x27, 0x5c, 0x0e, 0x3a, 0x42, 0x8d, 0x11}};

// An object that any thread may call directly.
class Agile final : public ComObject<Agile, ISupportErrorInfo>
{
public:
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) noexcept override { return S_FALSE; }
    HRESULT FinishCreation() { return CoCreateFreeThreadedMarshaler(ControllingUnknown(), m_marshaler.Put()); }
    HRESULT QueryFurther(REFIID iid, void **object)
    {
        return iid == __uuidof(IMarshal) ? m_marshaler->QueryInterface(iid, object) : E_NOINTERFACE;
    }

private:
    ComPtr<IUnknown> m_marshaler;
};

ULONG References(IUnknown *object)
{
    object->AddRef();
    return object->Release();
}

TEST(ComRuntime, CreatesObjectsOfRegisteredClassesUntilTheyAreRevoked)
{
    ClassFactory<Agile> factory;
    ComPtr<ISupportErrorInfo> object;
    const auto create = [&](REFIID iid) {
        return CoCreateInstance(TestClass, nullptr, CLSCTX_ALL, iid, object.PutVoid());
    };
    EXPECT_EQ(REGDB_E_CLASSNOTREG, create(__uuidof(ISupportErrorInfo)));
    EXPECT_FALSE(object);
    DWORD cookie = 0;
    ASSERT_EQ(S_OK, CoRegisterClassObject(TestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie));
    EXPECT_EQ(S_OK, create(__uuidof(ISupportErrorInfo)));
    EXPECT_TRUE(object);
    EXPECT_EQ(S_OK, create(__uuidof(IUnknown)));
    EXPECT_EQ(E_NOINTERFACE, create(__uuidof(IStream)));
    EXPECT_FALSE(object);
    EXPECT_EQ(S_OK, CoRevokeClassObject(cookie));
    EXPECT_EQ(REGDB_E_CLASSNOTREG, create(__uuidof(ISupportErrorInfo)));
    EXPECT_EQ(E_POINTER, CoCreateInstance(TestClass, nullptr, CLSCTX_ALL, __uuidof(IUnknown), nullptr));
}

TEST(ComRuntime, AnAgileObjectCrossesThreadsAsItself)
{
    ComPtr<ISupportErrorInfo> object;
    ASSERT_EQ(S_OK, Agile::CreateInstance(nullptr, __uuidof(ISupportErrorInfo), object.PutVoid()));
    const auto marshal = object.As<IMarshal>();
    ASSERT_TRUE(marshal);
    EXPECT_EQ(marshal.As<IUnknown>().Get(), object.As<IUnknown>().Get());
    CLSID clsid;
    DWORD size = 0;
    EXPECT_EQ(S_OK, marshal->GetUnmarshalClass(__uuidof(ISupportErrorInfo), object.Get(), MSHCTX_INPROC, nullptr,
                                               MSHLFLAGS_NORMAL, &clsid));
    WCHAR text[39];
    EXPECT_EQ(39, StringFromGUID2(clsid, text, 39));
    EXPECT_EQ(0x33au, clsid.Data1);
    EXPECT_EQ(S_OK, marshal->GetMarshalSizeMax(__uuidof(ISupportErrorInfo), object.Get(), MSHCTX_INPROC, nullptr,
                                               MSHLFLAGS_NORMAL, &size));
    EXPECT_GT(size, 0u);

    const ULONG before = References(object.Get());
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
    ASSERT_EQ(S_OK, marshal->MarshalInterface(stream.Get(), __uuidof(ISupportErrorInfo), object.Get(),
                                              MSHCTX_INPROC, nullptr, MSHLFLAGS_NORMAL));
    EXPECT_EQ(before + 1, References(object.Get()));
    std::thread([&] {
        ComPtr<ISupportErrorInfo> arrived;
        stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
        EXPECT_EQ(S_OK, marshal->UnmarshalInterface(stream.Get(), __uuidof(ISupportErrorInfo), arrived.PutVoid()));
        EXPECT_EQ(object.Get(), arrived.Get());
    }).join();
    EXPECT_EQ(before, References(object.Get()));
}

TEST(ComRuntime, TurnsIdentifiersIntoTextsAndBack)
{
    WCHAR text[39] = {};
    EXPECT_EQ(0, StringFromGUID2(TestClass, text, 38));
    EXPECT_EQ(39, StringFromGUID2(TestClass, text, 39));
    EXPECT_TRUE(WideText(text) == TEXT("{5D1F3C0A-6F5E-4A6B-9127-5C0E3A428D11}"));
    CLSID clsid;
    EXPECT_EQ(S_OK, CLSIDFromString(TEXT("{5d1f3c0a-6f5e-4a6b-9127-5c0e3a428D11}"), &clsid));
    EXPECT_TRUE(clsid == TestClass);
    EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromString(TEXT("{5d1f3c0a-6f5e-4a6b-9127-5c0e3a428D1}"), &clsid));
    EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromProgID(TEXT("Halvora.NoSuchProgram"), &clsid));
    TaskTextOwner progId;
    EXPECT_EQ(REGDB_E_CLASSNOTREG, ProgIDFromCLSID(TestClass, progId.Put()));
    EXPECT_FALSE(progId);
}

TEST(ComRuntime, EachThreadEntersItsApartmentByItself)
{
    std::thread([] {
        EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        EXPECT_EQ(S_FALSE, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        EXPECT_EQ(RPC_E_CHANGED_MODE, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        CoUninitialize();
        CoUninitialize();
        EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        CoUninitialize();
    }).join();
}
} // namespace
