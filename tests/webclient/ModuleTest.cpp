// The module as a file.
#include "WebComponents.h"
#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "tests/webclient/ModuleFile.h"

#include <gtest/gtest.h>

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
    {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(getClassObject(CLSID_MultipartFormData, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
        ComPtr<IMultipartFormData> form;
        ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(IMultipartFormData), form.PutVoid()), S_OK);
        factory.Reset();
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
    void *object = &object;
    EXPECT_EQ(getClassObject(CLSID_DOMDocument60, __uuidof(IClassFactory), &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
}
} // namespace
