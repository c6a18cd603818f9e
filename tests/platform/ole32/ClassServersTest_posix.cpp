#include "platform/ole32/ClassServers.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <sys/wait.h>
#include <unistd.h>

namespace
{
const CLSID ForeignClass = {0x5d1f3c0a, 0x6f5e, 0x4a6b, {0x91, 0x27, 0x5c, 0x0e, 0x3a, 0x42, 0x8d, 0x12}};
const WCHAR *const ForeignKey = TEXT("CLSID\\{5D1F3C0A-6F5E-4A6B-9127-5C0E3A428D12}\\InprocServer32");

HRESULT CreateFrom(const WideText &server)
{
    RegistryKeyOwner key;
    RegCreateKeyExW(HKEY_CLASSES_ROOT, ForeignKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
    RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(server.c_str()),
                   static_cast<DWORD>((server.size() + 1) * sizeof(WCHAR)));
    ComPtr<IUnknown> object;
    return CoCreateInstance(ForeignClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), object.PutVoid());
}
} // namespace

// In a process of its own: the folders hold until its end.
TEST(ClassServers, AreLoadedFromTheGivenFoldersAlone)
{
    const pid_t child = fork();
    if (child == 0)
    {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        EXPECT_EQ(CO_E_DLLNOTFOUND, CreateFrom(TEXT("/nowhere/else/a.so")));
        LoadClassServersOnlyFrom({"/nowhere/ours", "/nowhere/ours too"});
        EXPECT_EQ(CO_E_DLLNOTFOUND, CreateFrom(TEXT("/nowhere/ours/a.so")));
        for (const WCHAR *server : {TEXT("/nowhere/else/a.so"), TEXT("/nowhere/ours/../else/a.so"),
                                    TEXT("/nowhere/ours/below/a.so"), TEXT("a.so")})
        {
            EXPECT_EQ(E_ACCESSDENIED, CreateFrom(server));
        }
        RegDeleteTreeW(HKEY_CLASSES_ROOT, TEXT("CLSID\\{5D1F3C0A-6F5E-4A6B-9127-5C0E3A428D12}"));
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
}
