// The module as a file.
#include "WebComponents.h"
#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "tests/webclient/ModuleFile.h"

#include <gtest/gtest.h>

#include <utility>

namespace
{
const char *const Module = "Halvora.WebComponents";

TEST(WebComponentsModule, KnowsWhenItMayBeUnloaded)
{
    using GetClassObject = HRESULT(STDAPICALLTYPE *)(REFCLSID, REFIID, void **);
    const auto getClassObject = reinterpret_cast<GetClassObject>(ModuleFunction(Module, "DllGetClassObject"));
    const auto canUnload =
        reinterpret_cast<HRESULT(STDAPICALLTYPE *)()>(ModuleFunction(Module, "DllCanUnloadNow"));
    ASSERT_TRUE(getClassObject != nullptr && canUnload != nullptr);
    EXPECT_EQ(canUnload(), S_OK);
    const std::pair<CLSID, IID> classes[] = {{CLSID_OAuthWebClient, __uuidof(IOAuthWebClient)},
                                             {CLSID_RequestParameters, __uuidof(IRequestParameters)},
                                             {CLSID_MultipartFormData, __uuidof(IMultipartFormData)}};
    for (const auto &[clsid, iid] : classes)
    {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(getClassObject(clsid, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
        ComPtr<IUnknown> object;
        ASSERT_EQ(factory->CreateInstance(nullptr, iid, object.PutVoid()), S_OK);
        factory.Reset();
        EXPECT_EQ(canUnload(), S_FALSE);
        object.Reset();
        EXPECT_EQ(canUnload(), S_OK);
    }
    void *object = &object;
    EXPECT_EQ(getClassObject(CLSID_DOMDocument60, __uuidof(IClassFactory), &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(getClassObject(CLSID_OAuthWebClient, __uuidof(IClassFactory), nullptr), E_INVALIDARG);
}
} // namespace
