// The module as a file: its exports and its entries in the registry.
#include "WebComponents.h"
#include "XmlInterfaces.h"
#include "core/ComPtr.h"
#include "core/HandleOwner.h"
#include "core/WideText.h"
#include "tests/webclient/ModuleFile.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
const char *const Module = "Halvora.WebComponents.so";

WideText ClassText(const WCHAR *subkey, const WCHAR *value)
{
    WCHAR text[1024] = {};
    DWORD size = sizeof(text);
    RegistryKeyOwner key;
    const WideText path = WideText(TEXT("CLSID\\{C6338984-E934-4679-A284-D35BEC55674C}")) + subkey;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS ||
        RegQueryValueExW(key.Get(), value, nullptr, nullptr, reinterpret_cast<BYTE *>(text), &size) != ERROR_SUCCESS)
    {
        return TEXT("(none)");
    }
    return text;
}

TEST(WebComponentsModule, RegistersAndUnregistersItsClasses)
{
    const auto unregister = reinterpret_cast<HRESULT (*)()>(ModuleFunction(Module, "DllUnregisterServer"));
    ASSERT_NE(unregister, nullptr);
    ASSERT_TRUE(RegisterModule(Module));
    EXPECT_EQ(ClassText(TEXT("\\InprocServer32"), TEXT("ThreadingModel")), TEXT("Both"));
    const std::string path = MODULE_FOLDER "/Halvora.WebComponents.so";
    EXPECT_EQ(ClassText(TEXT("\\InprocServer32"), nullptr), WideText(path.begin(), path.end()));
    for (const CLSID &clsid : {CLSID_OAuthWebClient, CLSID_RequestParameters, CLSID_MultipartFormData})
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(CoCreateInstance(clsid, nullptr, 23, __uuidof(IUnknown), object.PutVoid()), S_OK);
    }
    EXPECT_EQ(unregister(), S_OK);
    EXPECT_EQ(ClassText(TEXT(""), nullptr), TEXT("(none)"));
    EXPECT_EQ(unregister(), S_OK); // nothing left to do is no failure
    ASSERT_TRUE(RegisterModule(Module));
}

TEST(WebComponentsModule, KnowsWhenItMayBeUnloaded)
{
    using GetClassObject = HRESULT (*)(REFCLSID, REFIID, void **);
    const auto getClassObject = reinterpret_cast<GetClassObject>(ModuleFunction(Module, "DllGetClassObject"));
    const auto canUnload = reinterpret_cast<HRESULT (*)()>(ModuleFunction(Module, "DllCanUnloadNow"));
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
