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

class Silent final : public ComObject<Silent, ISupportErrorInfo>
{
public:
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) noexcept override { return S_FALSE; }
};

TEST(ComRuntime, CreatesObjectsOfRegisteredClassesUntilTheyAreRevoked)
{
    ClassFactory<Silent> factory;
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
