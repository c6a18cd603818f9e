#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

namespace
{
TEST(Texts, AreComparedWithoutRegardToCase)
{
    EXPECT_EQ(StrCmpIW(TEXT("Photo"), TEXT("pHOTO")), 0);
    EXPECT_EQ(StrCmpIW(TEXT(""), TEXT("")), 0);
    EXPECT_LT(StrCmpIW(TEXT("a"), TEXT("B")), 0);
    EXPECT_GT(StrCmpIW(TEXT("photos"), TEXT("Photo")), 0);
    EXPECT_EQ(StrCmpIW(TEXT("\xC4"), TEXT("\xE4")), 0);
}

TEST(Texts, AreFoundInTexts)
{
    const WCHAR *const text = TEXT("one two two");
    EXPECT_EQ(StrStrW(text, TEXT("two")), text + 4);
    EXPECT_EQ(StrStrW(text, TEXT("Two")), nullptr);
    EXPECT_EQ(StrStrW(text, TEXT("")), nullptr);
}

TEST(Paths, TheFileNameStandsBehindTheLastSeparator)
{
    const struct
    {
        const WCHAR *path;
        const WCHAR *name;
        const WCHAR *extension;
    } cases[] = {
        {TEXT("c:\\folder\\picture.jpg"), TEXT("picture.jpg"), TEXT(".jpg")},
        {TEXT("picture.tar.gz"), TEXT("picture.tar.gz"), TEXT(".gz")},
        {TEXT("c:picture"), TEXT("picture"), TEXT("")},
        {TEXT("c:\\folder.d\\"), TEXT("folder.d\\"), TEXT("")},
        {TEXT("a.b c"), TEXT("a.b c"), TEXT("")},
        {TEXT("c:\\my pictures\\a b.jpg"), TEXT("a b.jpg"), TEXT(".jpg")},
        {TEXT(""), TEXT(""), TEXT("")},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(WideText(PathFindFileNameW(c.path)), c.name);
        EXPECT_EQ(WideText(PathFindExtensionW(c.path)), c.extension);
    }
}
} // namespace
