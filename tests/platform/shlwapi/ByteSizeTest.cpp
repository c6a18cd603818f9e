#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

namespace
{
TEST(ByteSize, HasThreeDigitsCutAndNotRounded)
{
    const struct
    {
        LONGLONG bytes;
        const WCHAR *text;
    } cases[] = {
        {0, TEXT("0 bytes")},
        {1023, TEXT("1023 bytes")},
        {-24, TEXT("-24 bytes")},
        {1024, TEXT("1.00 KB")},
        {1034, TEXT("1.00 KB")},
        {1035, TEXT("1.01 KB")},
        {23506, TEXT("22.9 KB")},
        {1023999, TEXT("999 KB")},
        {1024000, TEXT("0.97 MB")},
        {2400000000, TEXT("2.23 GB")},
        {1073741775, TEXT("0.99 GB")},
        {2400000000000000000, TEXT("2.08 EB")},
        {0x7FFFFFFFFFFFFFFF, TEXT("7.99 EB")},
    };
    for (const auto &c : cases)
    {
        WCHAR text[64];
        EXPECT_EQ(StrFormatByteSizeW(c.bytes, text, ARRAYSIZE(text)), text);
        EXPECT_EQ(WideText(text), c.text) << c.bytes;
    }
}
} // namespace
