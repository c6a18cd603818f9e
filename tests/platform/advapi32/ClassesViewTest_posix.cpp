// The merged view of the classes. Natively only: Wine 8 doesn't merge the user's classes in, and on
// Windows the machine's need an administrator.
#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <gmock/gmock.h>

namespace
{
TEST(ClassesView, ClassesOfTheUserStandAheadOfTheMachines)
{
    const WCHAR *const user = TEXT("Software\\Classes\\HalvoraPlatformTest");
    const auto set = [](HKEY root, const WCHAR *path, const WideText &text) {
        RegistryKeyOwner key;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr));
        RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                       static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    };
    const auto read = [] {
        RegistryKeyOwner key;
        WCHAR text[16] = {};
        DWORD size = sizeof(text);
        RegOpenKeyExW(HKEY_CLASSES_ROOT, TEXT("HalvoraPlatformTest"), 0, KEY_READ, key.Put());
        RegQueryValueExW(key.Get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE *>(text), &size);
        return WideText(text);
    };
    set(HKEY_CLASSES_ROOT, TEXT("HalvoraPlatformTest"), TEXT("machine"));
    RegistryKeyOwner machine;
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, user, 0, KEY_READ, machine.Put()));
    EXPECT_TRUE(read() == TEXT("machine"));
    set(HKEY_CURRENT_USER, user, TEXT("user"));
    EXPECT_TRUE(read() == TEXT("user"));
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CURRENT_USER, user));
    EXPECT_TRUE(read() == TEXT("machine"));
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_LOCAL_MACHINE, user));
    EXPECT_TRUE(read().empty());
}
} // namespace
