// A JPEG written anew from its own frame holds the same pixels, bit for bit, whatever its coding.
#include "tests/host/DamagedBytes.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/Codecs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
struct Case
{
    const char *Name;
    SampleOptions Options;
};

const Case Cases[] = {
    {"baseline 4:2:0", {}},
    {"4:4:4", {.HorizontalSampling = 1, .VerticalSampling = 1}},
    {"4:2:2", {.HorizontalSampling = 2, .VerticalSampling = 1}},
    {"4:4:0", {.HorizontalSampling = 1, .VerticalSampling = 2}},
    {"4:1:1", {.HorizontalSampling = 4, .VerticalSampling = 1}},
    {"whole units", {.Width = 64, .Height = 48}},
    {"one pixel", {.Width = 1, .Height = 1}},
    {"one column", {.Width = 1, .Height = 200}},
    {"as wide as can be", {.Width = 65500, .Height = 9}},
    {"as high as can be", {.Width = 9, .Height = 65500}},
    {"progressive", {.Progressive = true}},
    {"progressive, restarts", {.Progressive = true, .RestartInterval = 3}},
    {"restarts", {.RestartInterval = 2}},
    {"gray", {.Components = 1, .HorizontalSampling = 1, .VerticalSampling = 1}},
    {"gray, progressive", {.Components = 1, .HorizontalSampling = 1, .VerticalSampling = 1, .Progressive = true}},
    {"gray, sampled twice", {.Components = 1}},
    {"RGB by Adobe's marker", {.StoredAsRgb = true, .HorizontalSampling = 1, .VerticalSampling = 1}},
    {"RGB by component names",
     {.StoredAsRgb = true, .HorizontalSampling = 1, .VerticalSampling = 1, .AdobeMarker = false}},
    {"CMYK", {.Components = 4, .HorizontalSampling = 1, .VerticalSampling = 1}},
    {"CMYK without marker",
     {.Components = 4, .HorizontalSampling = 1, .VerticalSampling = 1, .AdobeMarker = false}},
    {"YCCK", {.Components = 4, .StoredAsYcck = true}},
    {"YCCK, progressive", {.Components = 4, .StoredAsYcck = true, .Progressive = true}},
    {"arithmetic", {.Arithmetic = true}},
    {"arithmetic, progressive", {.Progressive = true, .Arithmetic = true}},
    {"a scan each", {.SeveralScans = true}},
    {"best quality", {.Quality = 100}},
    {"worst quality", {.Quality = 1}},
};
} // namespace

TEST(IntactPixels, AreIdenticalInEveryCoding)
{
    for (const Case &sample : Cases)
    {
        SCOPED_TRACE(sample.Name);
        const Octets source = MakeJpeg(sample.Options);
        const Octets before = DecodeJpeg(source);
        ASSERT_FALSE(before.empty());
        Octets result;
        ASSERT_EQ(S_OK, Rewrite(source, {}, result));
        EXPECT_EQ(before, DecodeJpeg(result));
        EXPECT_EQ(sample.Options.Progressive, Holds(result, sample.Options.Arithmetic ? "\xFF\xCA" : "\xFF\xC2"));
        ComPtr<IWICBitmapFrameDecode> again;
        ASSERT_EQ(S_OK, OpenFrame(result, again));
        double x = 0;
        double y = 0;
        again->GetResolution(&x, &y);
        EXPECT_EQ(300, x) << "in JFIF, or in EXIF where there can't be a JFIF header";
        EXPECT_EQ(300, y);

        // An end that is missing is added; what no decoder reads stays behind.
        const Octets endless(source.begin(), source.end() - 2);
        Octets padded = endless;
        for (const unsigned char byte : std::string("private\xFF\xD3words\xFF\0\xFF\xD9", 18))
        {
            padded.push_back(byte);
        }
        for (const Octets &odd : {endless, padded})
        {
            Octets mended;
            const bool isArithmetic = sample.Options.Arithmetic; // which doesn't tell where it ends
            EXPECT_EQ(isArithmetic ? WINCODEC_ERR_BADIMAGE : S_OK, Rewrite(odd, {}, mended)) << odd.size();
            EXPECT_TRUE(isArithmetic || result == mended) << odd.size();
        }
    }
}

// Rows that the frame's header doesn't tell of any more aren't part of the picture.
TEST(IntactPixels, EndWithTheLastRowOfTheFrame)
{
    Octets source = MakeJpeg({.Width = 64, .Height = 64, .HorizontalSampling = 1, .VerticalSampling = 1});
    Octets rows = DecodeJpeg(source);
    const Octets header = {0xFF, 0xC0, 0, 17, 8, 0, 64};
    const auto frame = std::search(source.begin(), source.end(), header.begin(), header.end());
    ASSERT_NE(frame, source.end());
    frame[6] = 16;
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(source, {.CopyBlocks = false}, result));
    rows.resize(16 + 64 * 3 * 16);
    EXPECT_EQ(rows, DecodeJpeg(result));
    EXPECT_LT(result.size(), source.size() * 2 / 3);
}

TEST(IntactPixels, BringNothingElseAlong)
{
    Octets source = MakeJpeg({.Components = 1,
                              .HorizontalSampling = 1,
                              .VerticalSampling = 1,
                              .Markers = {{0xE0, std::string("JFXX\0\x10private-thumbnail", 23)},
                                          {0xE2, std::string("MPF\0private-list", 16)},
                                          {0xE5, "private-app5"},
                                          {0xFE, "private-comment"}}});
    const std::string tail = "private-behind-the-end";
    source.insert(source.end(), tail.begin(), tail.end());
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(source, {.CopyBlocks = false}, result));
    EXPECT_FALSE(Holds(result, "private"));
    EXPECT_EQ(DecodeJpeg(source), DecodeJpeg(result));

    ASSERT_EQ(S_OK, Rewrite(source, {}, result));
    EXPECT_TRUE(Holds(result, "private-app5"));
    EXPECT_TRUE(Holds(result, "private-comment"));
    EXPECT_FALSE(Holds(result, "private-thumbnail"));
    EXPECT_FALSE(Holds(result, "private-list"));
    EXPECT_FALSE(Holds(result, tail));
}

TEST(IntactPixels, AreRefusedWhenTheSourceIsDamaged)
{
    for (const Case &sample : Cases)
    {
        SCOPED_TRACE(sample.Name);
        SampleOptions options = sample.Options;
        options.Width = options.Height = 200;
        const Octets whole = MakeJpeg(options);
        std::vector<Octets> damaged{Octets(whole.begin(), whole.end() - 3)};
        for (size_t place = 0; place < 10; ++place)
        {
            if (!options.Arithmetic) // where nearly all bits have a meaning
            {
                damaged.push_back(DamagedAt(whole, place));
            }
            damaged.emplace_back(whole.begin(), whole.begin() + whole.size() * (place + 20) / 30);
        }
        for (const Octets &source : damaged)
        {
            Octets result;
            EXPECT_EQ(WINCODEC_ERR_BADIMAGE, Rewrite(source, {}, result)) << &source - damaged.data();
            EXPECT_TRUE(result.empty() || DecodeJpeg(result).empty()) << "a file that seems whole";
        }
    }
}
