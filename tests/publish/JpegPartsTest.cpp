// The single decisions behind a new JPEG.
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "publish/JpegEncoder.h"
#include "publish/JpegSubsampling.h"
#include "publish/RetryRule.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/FakeEncoding.h"
#include "tests/doubles/FakeImaging.h"

#include <gmock/gmock.h>

#include <optional>
#include <string_view>

TEST(OutputResolution, IsThatOfTheWantedSizeOrElseTheSourcesOwn)
{
    const struct
    {
        UINT32 mode;
        UINT32 longEdge;
        double printDpi, sourceX, sourceY;
        double x, y;
    } cases[] = {
        {SendProcessed, 1024, 300, 96, 96, 300, 300},  {SendProcessed, 1024, -180, 96, 96, 180, 180},
        {SendProcessed, 1024, 0, 96, 96, 72, 72},      {SendProcessed, 0, 300, 96, 96, 96, 96},
        {SendProcessed, 0, 300, 1, 2540, 1, 2540},     {SendProcessed, 0, 300, 0, 0, 300, 300},
        {SendProcessed, 0, 300, 1200, 0, 300, 300},    {SendProcessed, 0, 300, 0.99, 1200, 300, 300},
        {SendProcessed, 0, 0, 0, 0, 72, 72},           {SendPixelsIntact, 1024, 300, 96, 72, 96, 72},
        {SendPixelsIntact, 1024, 300, 0, 0, 300, 300}, {SendPixelsIntact, 0, -250, -96, -96, 250, 250},
    };
    for (const auto &c : cases)
    {
        FakeImaging imaging;
        imaging.DpiX = c.sourceX;
        imaging.DpiY = c.sourceY;
        UploadOptions options;
        options.Mode = c.mode;
        options.LongEdgePixels = c.longEdge;
        options.PrintDpi = c.printDpi;
        const Resolution chosen = ChooseResolution(options, imaging.MakePicture().Get());
        const int number = static_cast<int>(&c - cases);
        EXPECT_EQ(chosen.X, c.x) << number;
        EXPECT_EQ(chosen.Y, c.y) << number;
        const bool isAsked = c.mode != SendProcessed || c.longEdge == 0;
        EXPECT_EQ(imaging.Calls.Operations().size(), isAsked ? 1u : 0u) << number;
    }
}

TEST(EncoderOptions, AreForLooksOrForFewBytes)
{
    FakeImaging imaging;
    const auto bag = MakeFakeOptionBag(imaging);
    WriteEncoderOptions(bag.Get(), false, true);
    WriteEncoderOptions(bag.Get(), true, true);
    WriteEncoderOptions(bag.Get(), false, false);
    WriteEncoderOptions(bag.Get(), true, false);
    EXPECT_THAT(imaging.Calls.DetailsOf("Options.Write"),
                testing::ElementsAre("ImageQuality 1 VT_R4=3F59999A, JpegYCrCbSubsampling 1 VT_UI1=3",
                                     "ImageQuality 1 VT_R4=3F400000, JpegYCrCbSubsampling 1 VT_UI1=1",
                                     "ImageQuality 1 VT_R4=3F59999A", "ImageQuality 1 VT_R4=3F400000"));
    imaging.Calls.FailOperation("Options.Write", 0x80031234, 5);
    EXPECT_THROW(WriteEncoderOptions(bag.Get(), false, true), HresultError);
}

TEST(JpegSubsampling, CameWithAVersion)
{
    EXPECT_FALSE(VersionHasJpegSubsampling(5, 2));
    EXPECT_FALSE(VersionHasJpegSubsampling(6, 0));
    EXPECT_TRUE(VersionHasJpegSubsampling(6, 1));
    EXPECT_TRUE(VersionHasJpegSubsampling(6, 2));
    EXPECT_TRUE(VersionHasJpegSubsampling(10, 0));
    EXPECT_TRUE(JpegSubsamplingSupported()) << "every system that this runs on";
}

TEST(JpegSubsampling, ElseShowsInTheThreadingModel)
{
    const WCHAR *const path = TEXT("Software\\HalvoraTest\\JpegSubsampling");
    EXPECT_FALSE(IsFreeThreaded(HKEY_CURRENT_USER, path)) << "no key";
    RegistryKeyOwner key;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr),
              ERROR_SUCCESS);
    EXPECT_FALSE(IsFreeThreaded(HKEY_CURRENT_USER, path)) << "no value";
    const auto answer = [&](DWORD type, WideView text) {
        EXPECT_EQ(RegSetValueExW(key.Get(), TEXT("ThreadingModel"), 0, type,
                                 reinterpret_cast<const BYTE *>(text.data()),
                                 static_cast<DWORD>(text.size() * sizeof(WCHAR))),
                  ERROR_SUCCESS);
        return IsFreeThreaded(HKEY_CURRENT_USER, path);
    };
    EXPECT_TRUE(answer(REG_SZ, WideView(TEXT("Both\0"), 5)));
    EXPECT_TRUE(answer(REG_SZ, TEXT("both")));
    EXPECT_TRUE(answer(REG_EXPAND_SZ, WideView(TEXT("FREE\0"), 5)));
    EXPECT_FALSE(answer(REG_SZ, WideView(TEXT("Apartment\0"), 10)));
    EXPECT_FALSE(answer(REG_SZ, TEXT("")));
    EXPECT_FALSE(answer(REG_SZ, TEXT("Both, and more than fits")));
    EXPECT_FALSE(answer(REG_BINARY, WideView(TEXT("Both\0"), 5)));
    key.Reset();
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, path), ERROR_SUCCESS);
}

namespace
{
constexpr HRESULT BadImage = 0x88982F60;
constexpr HRESULT UnexpectedType = 0x88982F8E;
constexpr HRESULT MetadataFailure = 0x80031111; // stands for a failure of the host's writer
constexpr int None = -1;
} // namespace

// Sequences of passes: the result of each, the milliseconds until the next, and whether that copies blocks.
TEST(RetryRule, AnswersEachOutcomeInItsTurn)
{
    struct Step
    {
        HRESULT outcome;
        int pause;
        bool copiesAfter;
    };
    const struct
    {
        bool copies;
        std::vector<Step> steps;
    } cases[] = {
        {true, {{S_OK, None, true}}},
        {true, {{E_FAIL, None, true}}},
        {true, {{BadImage, 100, true}, {BadImage, 200, true}, {BadImage, 300, true}, {BadImage, None, true}}},
        {false, {{BadImage, 100, false}, {BadImage, 200, false}, {BadImage, 300, false}, {BadImage, None, false}}},
        {true, {{MetadataFailure, 0, false}, {MetadataFailure, None, false}}},
        {true, {{UnexpectedType, 0, false}, {UnexpectedType, None, false}}},
        {false, {{MetadataFailure, None, false}}},
        {false, {{UnexpectedType, None, false}}},
        // A metadata failure doesn't touch the count; any other result of writing the pixels resets it.
        {true,
         {{BadImage, 100, true},
          {MetadataFailure, 0, false},
          {BadImage, 200, false},
          {MetadataFailure, None, false}}},
        {true,
         {{BadImage, 100, true},
          {BadImage, 200, true},
          {UnexpectedType, 0, false},
          {BadImage, 100, false},
          {UnexpectedType, None, false}}},
    };
    for (const auto &c : cases)
    {
        RetryRule rule(c.copies);
        for (const Step &step : c.steps)
        {
            const std::optional<DWORD> next =
                step.outcome == MetadataFailure ? rule.AfterMetadataFailure() : rule.AfterPixels(step.outcome);
            const auto where = ::testing::Message()
                               << "case " << (&c - cases) << ", step " << (&step - &c.steps[0]);
            EXPECT_EQ(next ? static_cast<int>(*next) : None, step.pause) << where;
            EXPECT_EQ(c.copies && !rule.BlocksDropped, step.copiesAfter) << where;
        }
    }
}
