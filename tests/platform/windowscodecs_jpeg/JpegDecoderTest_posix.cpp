// What the decoder says of good and bad files.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/Codecs.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace
{
HRESULT Open(const Octets &file)
{
    ComPtr<IWICBitmapFrameDecode> frame;
    return OpenFrame(file, frame);
}

Octets WithByte(Octets file, size_t behindFrameMarker, unsigned char value)
{
    for (size_t at = 0; at + 1 < file.size(); ++at)
    {
        if (file[at] == 0xFF && file[at + 1] >= 0xC0 && file[at + 1] <= 0xC2)
        {
            file[at + behindFrameMarker] = value;
            return file;
        }
    }
    return {};
}
} // namespace

TEST(JpegDecoder, TellsWhyItRefusesAFile)
{
    const Octets good = MakeJpeg({});
    const Octets tiff = {'I', 'I', 42, 0, 8, 0, 0, 0};
    EXPECT_EQ(S_OK, Open(good));
    EXPECT_EQ(WINCODEC_ERR_BADHEADER, Open(tiff));
    EXPECT_EQ(WINCODEC_ERR_BADHEADER, Open({}));
    EXPECT_EQ(WINCODEC_ERR_BADHEADER, Open({0xFF, 0xD8}));
    EXPECT_EQ(WINCODEC_ERR_BADIMAGE, Open(Octets(good.begin(), good.begin() + 100)));
    EXPECT_EQ(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT, Open(WithByte(good, 4, 12))) << "12 bits";
    EXPECT_EQ(WINCODEC_ERR_UNSUPPORTEDVERSION, Open(WithByte(good, 1, 0xC3))) << "lossless";
    EXPECT_EQ(WINCODEC_ERR_BADIMAGE, Open(WithByte(WithByte(good, 5, 0), 6, 0))) << "no height";
    EXPECT_EQ(WINCODEC_ERR_IMAGESIZEOUTOFRANGE, Open(WithByte(WithByte(good, 7, 0xFF), 8, 0xFF)));
}

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
        {jfif(1, 72, 72), exif(1, 120), 72, 72},
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
