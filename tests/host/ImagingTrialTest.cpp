#include "host/ImagingTrial.h"

#include "tests/platform/KnownGaps.h"

#include <gtest/gtest.h>

#include <objbase.h>

TEST(ImagingTrial, TellsWhatTheComponentDoes)
{
    ASSERT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
    const MetadataSupport support = TryWritingMetadata();
    EXPECT_EQ(support.copies, UnderWine ? CopiedMetadata::None : CopiedMetadata::Removable);
    EXPECT_EQ(support.writes, !UnderWine);
    EXPECT_EQ(TryReadingMetadata(), !UnderWine);
    CoUninitialize();
}
