#include "platform/ole32/ClassServers.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"

#include <gtest/gtest.h>

namespace
{
constexpr CLSID ForeignClass = {0x5d1f3c0a, 0x6f5e, 0x4a6b, {0x91, 0x27, 0x5c, 0x0e, 0x3a, 0x42, 0x8d, 0x12}};

HRESULT Create()
{
    ComPtr<IUnknown> object;
    return CoCreateInstance(ForeignClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object.PutVoid());
}

// A path in the store would be code that anyone who can write the store's file runs.
TEST(ClassServers, AreThoseOfTheTableAndNotOfTheRegistry)
{
    RegistryKeyOwner key;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER,
                              u"Software\\Classes\\CLSID\\{5D1F3C0A-6F5E-4A6B-9127-5C0E3A428D12}\\InprocServer32",
                              0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr));
    const WCHAR path[] = u"/etc/passwd";
    RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(path), sizeof(path));
    EXPECT_EQ(REGDB_E_CLASSNOTREG, Create());
    SetClassServers({{ForeignClass, "/nowhere/a.so"}});
    EXPECT_EQ(CO_E_DLLNOTFOUND, Create());
    SetClassServers({{ForeignClass, "/etc/passwd"}});
    EXPECT_EQ(CO_E_ERRORINDLL, Create());
    SetClassServers({});
    EXPECT_EQ(REGDB_E_CLASSNOTREG, Create());
}
} // namespace
