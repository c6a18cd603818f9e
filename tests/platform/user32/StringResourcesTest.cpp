#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace
{
WideText Load(UINT id)
{
    WCHAR text[64];
    const int length = LoadStringW(GetModuleHandleW(nullptr), id, text, ARRAYSIZE(text));
    // If there is no text, the content of the buffer is undefined.
    EXPECT_TRUE(length == 0 || text[length] == 0);
    return WideText(text, length);
}

TEST(StringResources, AreFoundByIdInTheirBlock)
{
    EXPECT_EQ(Load(15), TEXT("fifteen"));
    EXPECT_EQ(Load(16), TEXT("sixteen"));
    EXPECT_EQ(Load(18), TEXT("\xDCml\xE4ut \x20AC"));
    EXPECT_EQ(Load(5000), TEXT("five thousand"));
}

TEST(StringResources, MissingOnesAreEmpty)
{
    EXPECT_EQ(Load(17), TEXT("")) << "in a block that is there";
    EXPECT_EQ(Load(9000), TEXT("")) << "in no block";
}

TEST(StringResources, AreCutToTheBuffer)
{
    WCHAR text[4];
    EXPECT_EQ(LoadStringW(GetModuleHandleW(nullptr), 15, text, 4), 3);
    EXPECT_EQ(WideText(text), TEXT("fif"));
}

TEST(StringResources, ABufferOfNoLengthGetsTheTextInPlace)
{
    const WCHAR *text = nullptr;
    ASSERT_EQ(LoadStringW(GetModuleHandleW(nullptr), 5000, reinterpret_cast<WCHAR *>(&text), 0), 13);
    EXPECT_EQ(WideText(text, 13), TEXT("five thousand"));
}

TEST(Icons, OneHandlePerResource)
{
    const HMODULE module = GetModuleHandleW(nullptr);
    const HICON icon = LoadIconW(module, MAKEINTRESOURCEW(400));
    EXPECT_NE(icon, nullptr);
    EXPECT_EQ(LoadIconW(module, MAKEINTRESOURCEW(400)), icon);
    SetLastError(0);
    EXPECT_EQ(LoadIconW(module, MAKEINTRESOURCEW(401)), nullptr);
    // Wine goes on to look for a type that this program doesn't have.
    EXPECT_EQ(GetLastError(),
              static_cast<DWORD>(UnderWine ? ERROR_RESOURCE_TYPE_NOT_FOUND : ERROR_RESOURCE_NAME_NOT_FOUND));
}

TEST(CharacterCase, OfTextsAndOfSingleCharacters)
{
    WCHAR text[] = {'a', 'Z', '1', 0xE4, 0x3C9, 0xDF, 0};
    EXPECT_EQ(CharUpperW(text), text);
    EXPECT_EQ(WideText(text), TEXT("AZ1\xC4\x3A9\xDF"));
    const auto upper = [](WCHAR c) {
        return reinterpret_cast<ULONG_PTR>(CharUpperW(reinterpret_cast<WCHAR *>(ULONG_PTR{c})));
    };
    EXPECT_EQ(upper('q'), ULONG_PTR{'Q'});
    EXPECT_EQ(upper(0x451), ULONG_PTR{0x401});
}
} // namespace
