#include "host/ImagingTrial.h"

#include "tests/doubles/SystemModules.h"
#include "tests/platform/KnownGaps.h"

#include <gtest/gtest.h>

#include <objbase.h>

TEST(ImagingTrial, TellsWhatTheComponentDoes)
{
    RegisterSystemModules();
    ASSERT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
    EXPECT_EQ(TryCopyingMetadata(), UnderWine ? CopiedMetadata::None : CopiedMetadata::Some);
    EXPECT_EQ(TryReadingMetadata(), !UnderWine);
    CoUninitialize();
}
