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
} // namespace
