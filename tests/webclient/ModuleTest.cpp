// The module as a file: its exports and its entries in the registry.
#include "WebComponents.h"
#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/WideText.h"
#include "tests/webclient/ModuleFile.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
const char *const Module = "Halvora.WebComponents";
const char *const ClientClass = "CLSID\\{5DC9820B-696D-488D-B09C-73CC4D72C85B}";

WideText Wide(const std::string &text)
{
    return WideText(text.begin(), text.end());
}

// Of the entry of the web client's class below root.
WideText ClassText(HKEY root, const std::string &prefix, const char *subkey, const WCHAR *value)
{
    WCHAR text[1024] = {};
    DWORD size = sizeof(text);
    RegistryKeyOwner key;
    if (RegOpenKeyExW(root, Wide(prefix + ClientClass + subkey).c_str(), 0, KEY_READ, key.Put()) !=
            ERROR_SUCCESS ||
        RegQueryValueExW(key.Get(), value, nullptr, nullptr, reinterpret_cast<BYTE *>(text), &size) !=
            ERROR_SUCCESS)
    {
        return TEXT("(none)");
    }
    return text;
}

WideText MachineText(const char *subkey, const WCHAR *value = nullptr)
{
    return ClassText(HKEY_LOCAL_MACHINE, "Software\\Classes\\", subkey, value);
}

WideText UserText(const char *subkey, const WCHAR *value = nullptr)
{
    return ClassText(HKEY_CURRENT_USER, "Software\\Classes\\", subkey, value);
}

using Register = HRESULT(STDAPICALLTYPE *)();
using Install = HRESULT(STDAPICALLTYPE *)(BOOL install, LPCWSTR commandLine);

// Leaves nothing registered to other tests, which may share the registry.
class WebComponentsModule : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_register != nullptr && m_unregister != nullptr && m_install != nullptr);
    }
    void TearDown() override
    {
        EXPECT_EQ(m_unregister(), S_OK);
        EXPECT_EQ(m_install(FALSE, TEXT("user")), S_OK);
    }

    const Register m_register = reinterpret_cast<Register>(ModuleFunction(Module, "DllRegisterServer"));
    const Register m_unregister = reinterpret_cast<Register>(ModuleFunction(Module, "DllUnregisterServer"));
    const Install m_install = reinterpret_cast<Install>(ModuleFunction(Module, "DllInstall"));
};

TEST_F(WebComponentsModule, RegistersAndUnregistersItsClasses)
{
    ASSERT_EQ(m_register(), S_OK);
    EXPECT_EQ(MachineText("\\InprocServer32", TEXT("ThreadingModel")), TEXT("Both"));
    EXPECT_EQ(MachineText("\\InprocServer32"), Wide(ModulePath(Module)));
    for (const CLSID &clsid : {CLSID_OAuthWebClient, CLSID_RequestParameters, CLSID_MultipartFormData})
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(CoCreateInstance(clsid, nullptr, 23, __uuidof(IUnknown), object.PutVoid()), S_OK);
    }
    EXPECT_EQ(m_unregister(), S_OK);
    EXPECT_EQ(MachineText(""), TEXT("(none)"));
    EXPECT_EQ(m_unregister(), S_OK); // nothing left to do is no failure
}

TEST_F(WebComponentsModule, RegistersForOneUserAlone)
{
    EXPECT_EQ(m_install(TRUE, TEXT("User")), S_OK);
    EXPECT_EQ(UserText("\\InprocServer32"), Wide(ModulePath(Module)));
    EXPECT_EQ(UserText("\\InprocServer32", TEXT("ThreadingModel")), TEXT("Both"));
    EXPECT_EQ(MachineText(""), TEXT("(none)"));
    // Each scope is taken back for itself.
    EXPECT_EQ(m_install(TRUE, nullptr), S_OK);
    EXPECT_EQ(m_install(FALSE, TEXT("user")), S_OK);
    EXPECT_EQ(UserText(""), TEXT("(none)"));
    EXPECT_EQ(MachineText("\\InprocServer32"), Wide(ModulePath(Module)));
}

TEST_F(WebComponentsModule, KnowsWhenItMayBeUnloaded)
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
