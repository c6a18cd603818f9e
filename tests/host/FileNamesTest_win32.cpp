#include "host/FileNames.h"

#include <gtest/gtest.h>

TEST(FileNames, AreTheInterfacesOwnAndShownSafely)
{
    const std::wstring name = L"C:\\caf\x00E9\xDCE9.jpg";
    EXPECT_EQ(TextOfPath(PathOfText(name)), name);
    EXPECT_EQ(ShownPath(L"a\xDCFF\x1B[2J"), "a\xEF\xBF\xBD^[[2J");
    EXPECT_EQ(ExtensionOf(name), "jpg");
    EXPECT_EQ(ExtensionOf(L"none"), "");
}
