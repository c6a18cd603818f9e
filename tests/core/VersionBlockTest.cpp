#include "core/VersionBlock.h"
#include "tests/doubles/CallRecord.h"

#include <gmock/gmock.h>

TEST(VersionBlock, ReadsTheTextsOfThisModule)
{
    const VersionBlock version = VersionBlock::OfThisModule();
    EXPECT_EQ(Narrow(version.String(TEXT("FileVersion"))), "1.96 (Build 401)");
    EXPECT_EQ(Narrow(version.String(TEXT("NoSuchName"))), "");
    EXPECT_TRUE(version.String(WideText(3000, TEXT('n')).c_str()).empty());

    std::array<UINT16, 4> parts{};
    ASSERT_TRUE(version.FileVersion(parts));
    EXPECT_THAT(parts, testing::ElementsAre(1, 96, 0, 401));
}

TEST(VersionBlock, AnEmptyOneHasNoTexts)
{
    const VersionBlock version;
    EXPECT_TRUE(version.String(TEXT("FileVersion")).empty());
    std::array<UINT16, 4> parts{9, 9, 9, 9};
    EXPECT_FALSE(version.FileVersion(parts));
    EXPECT_THAT(parts, testing::Each(9));
}
