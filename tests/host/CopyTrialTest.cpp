#include "host/CopyTrial.h"

#include "tests/doubles/SystemModules.h"
#include "tests/platform/World.h"

#include <gtest/gtest.h>

#include <objbase.h>

TEST(CopyTrial, TellsWhatTheImagingComponentDoes)
{
    RegisterSystemModules();
    ASSERT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
    EXPECT_EQ(TryCopyingMetadata(), underWine ? CopiedMetadata::None : CopiedMetadata::Some);
    CoUninitialize();
}
