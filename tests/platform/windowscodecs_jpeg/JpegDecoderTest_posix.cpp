// What the decoder tells beside the pixels.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(JpegDecoder, KnowsTheResolution)
{
    const auto jfif = [](char unit, char x, char y) {
        return std::string("JFIF\0\1\1", 7) + unit + '\0' + x + '\0' + y + std::string(2, '\0');
    };
    // One rational of dots for both axes, and the unit.
    const auto exif = [](char unit, char dots) {
        const std::string both = "\5\0\1\0\0\0\x32\0\0\0"s;
        return "Exif\0\0II*\0\x08\0\0\0\3\0\x1A\1"s + both + "\x1B\1"s + both + "\x28\1\3\0\1\0\0\0"s + unit +
               "\0\0\0\0\0\0\0"s + dots + "\0\0\0\1\0\0\0"s;
    };
    const struct
    {
        std::string Jfif;
        std::string Exif;
        double X;
        double Y;
    } cases[] = {
        {jfif(1, 72, 96), "", 72, 96},
        {jfif(2, 100, 100), "", 254, 254},
        {jfif(0, 1, 1), "", 96, 96},
        {jfif(0, 2, 1), "", 192, 96},
        {jfif(1, 0, 0), "", 0, 0},
        {jfif(1, 72, 72), exif(2, 120), 120, 120},
        {jfif(0, 1, 1), exif(3, 50), 127, 127},
        {jfif(1, 72, 72), exif(2, 0), 72, 72},
    };
    for (const auto &sample : cases)
    {
        SampleOptions options;
        if (!sample.Exif.empty())
        {
            options.Markers = {{0xE1, sample.Exif}};
        }
        Octets file = MakeJpeg(options);
        std::copy(sample.Jfif.begin(), sample.Jfif.end(), file.begin() + 6);
        ComPtr<IWICBitmapFrameDecode> frame;
        ASSERT_EQ(S_OK, OpenFrame(file, frame));
        double x = 0;
        double y = 0;
        EXPECT_EQ(S_OK, frame->GetResolution(&x, &y));
        EXPECT_DOUBLE_EQ(sample.X, x);
        EXPECT_DOUBLE_EQ(sample.Y, y);
    }
}

TEST(JpegDecoder, DropsAColourProfileThatIsNone)
{
    const std::string parts = std::string("ICC_PROFILE\0\1\1", 14) + std::string(300, 'x');
    ComPtr<IWICBitmapFrameDecode> frame;
    ASSERT_EQ(S_OK, OpenFrame(MakeJpeg({.Markers = {{0xE2, parts}}}), frame));
    UINT count = 9;
    EXPECT_EQ(S_OK, frame->GetColorContexts(0, nullptr, &count));
    EXPECT_EQ(0u, count);
}
