// The single decisions behind a new JPEG.
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "publish/JpegEncoder.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/FakeImaging.h"

#include <gmock/gmock.h>

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
    EXPECT_THAT(imaging.Calls.LinesOf("Options.Write "),
                testing::ElementsAre("ImageQuality 1 VT_R4=3F59999A, JpegYCrCbSubsampling 1 VT_UI1=3",
                                     "ImageQuality 1 VT_R4=3F400000, JpegYCrCbSubsampling 1 VT_UI1=1",
                                     "ImageQuality 1 VT_R4=3F59999A", "ImageQuality 1 VT_R4=3F400000"));
    imaging.Calls.FailOperation("Options.Write", 0x80031234);
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
