#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
const WCHAR *const TestKey = TEXT("Software\\HalvoraPlatformTest");

class RegistryTest : public testing::Test
{
protected:
    void SetUp() override
    {
        RemoveKeys();
        DWORD disposition = 0;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, TestKey, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, m_key.Put(), &disposition));
        ASSERT_EQ(DWORD(REG_CREATED_NEW_KEY), disposition);
    }

    void TearDown() override
    {
        m_key.Reset();
        RemoveKeys();
    }

    static void RemoveKeys()
    {
        for (const WCHAR *below : {TEXT("\\Größe\\Below"), TEXT("\\Größe"), TEXT("")})
        {
            RegDeleteKeyW(HKEY_CURRENT_USER, (WideText(TestKey) + below).c_str());
        }
    }

    RegistryKeyOwner Open(const WCHAR *subkey) const
    {
        RegistryKeyOwner key;
        RegOpenKeyExW(m_key.Get(), subkey, 0, KEY_READ, key.Put());
        return key;
    }

    RegistryKeyOwner Create(const WCHAR *subkey) const
    {
        RegistryKeyOwner key;
        EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(m_key.Get(), subkey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                                 key.Put(), nullptr));
        return key;
    }

    LSTATUS SetText(const WCHAR *name, const WideText &text) const
    {
        return RegSetValueExW(m_key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                              static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    }

    RegistryKeyOwner m_key;
};

TEST_F(RegistryTest, KeepsEveryTypeOfValueAsItWasWritten)
{
    const struct
    {
        const WCHAR *name;
        DWORD type;
        std::vector<BYTE> data;
    } cases[] = {
        {TEXT(""), REG_SZ, {'d', 0, 0, 0}},
        {TEXT("Number"), REG_DWORD, {1, 2, 3, 0x84}},
        {TEXT("Short number"), REG_DWORD, {1, 2}},
        {TEXT("Bytes"), REG_BINARY, std::vector<BYTE>(100, 0xA5)},
        {TEXT("Nothing"), REG_BINARY, {}},
        {TEXT("Unclosed text"), REG_SZ, {'x', 0}},
        {TEXT("Text with zero"), REG_SZ, {'x', 0, 0, 0, 'y', 0, 0, 0}},
        {TEXT("Two lines"), REG_SZ, {'x', 0, '\n', 0, 'y', 0, 0, 0}},
        {TEXT("Half a pair"), REG_SZ, {0x00, 0xD8, 0, 0}},
        {TEXT("Expandable"), REG_EXPAND_SZ, {'%', 0, 'A', 0, '%', 0, 0, 0}},
        {TEXT("Texts"), REG_MULTI_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0}},
        {TEXT("Foreign type"), 0x1234, {9, 8, 7}},
        {TEXT("Quote \" = [backslash \\]"), REG_SZ, {'\\', 0, '"', 0, 0xE9, 0, 0x3D, 0xD8, 0x00, 0xDE, 0, 0}},
    };
    for (const auto &c : cases)
    {
        // Windows closes an unclosed text with the zero that may stand behind it.
        std::vector<BYTE> buffer = c.data;
        buffer.insert(buffer.end(), {'?', 0});
        ASSERT_EQ(ERROR_SUCCESS,
                  RegSetValueExW(m_key.Get(), c.name, 0, c.type, c.data.empty() ? nullptr : buffer.data(),
                                 static_cast<DWORD>(c.data.size())));
    }
    for (const auto &c : cases)
    {
        std::vector<BYTE> data(200);
        DWORD type = 0;
        DWORD size = static_cast<DWORD>(data.size());
        ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key.Get(), c.name, nullptr, &type, data.data(), &size));
        data.resize(size);
        EXPECT_EQ(c.type, type);
        EXPECT_EQ(c.data, data);
    }
}

TEST_F(RegistryTest, TellsTheSizeThatAValueNeeds)
{
    ASSERT_EQ(ERROR_SUCCESS, SetText(TEXT("Text"), TEXT("1234567")));
    BYTE buffer[16] = {};
    DWORD type = 0;
    DWORD size = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key.Get(), TEXT("Text"), nullptr, &type, nullptr, &size));
    EXPECT_EQ(16u, size);
    EXPECT_EQ(DWORD(REG_SZ), type);
    size = 15;
    EXPECT_EQ(ERROR_MORE_DATA, RegQueryValueExW(m_key.Get(), TEXT("Text"), nullptr, nullptr, buffer, &size));
    EXPECT_EQ(16u, size);
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key.Get(), TEXT("TEXT"), nullptr, nullptr, buffer, &size));
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegQueryValueExW(m_key.Get(), TEXT("Text"), nullptr, nullptr, buffer, nullptr));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegQueryValueExW(m_key.Get(), TEXT("None"), nullptr, &type, buffer, &size));
}

TEST_F(RegistryTest, NamesAreFoundInAnyCase)
{
    Create(TEXT("Größe\\Below"));
    EXPECT_TRUE(Open(TEXT("gRÖßE\\BELOW")));
    EXPECT_FALSE(Open(TEXT("Größe\\Other")));
    ASSERT_EQ(ERROR_SUCCESS, SetText(TEXT("Été"), TEXT("a")));
    ASSERT_EQ(ERROR_SUCCESS, SetText(TEXT("éTÉ"), TEXT("b")));
    WCHAR text[2] = {};
    DWORD size = sizeof(text);
    EXPECT_EQ(ERROR_SUCCESS,
              RegQueryValueExW(m_key.Get(), TEXT("Été"), nullptr, nullptr, reinterpret_cast<BYTE *>(text), &size));
    EXPECT_EQ('b', text[0]);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteValueW(m_key.Get(), TEXT("ÉTÉ")));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegDeleteValueW(m_key.Get(), TEXT("ÉTÉ")));
}
} // namespace
