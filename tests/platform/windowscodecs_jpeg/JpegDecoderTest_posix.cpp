// What the decoder says of good and bad files.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/jpeg/JpegCodec.h"

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

TEST(JpegDecoder, BreaksNowhereWhenAFileEndsOrIsChanged)
{
    const Octets good = MakeJpeg(
        {.Width = 40, .Height = 30, .Markers = {{0xE1, std::string("Exif\0\0II*\0\10\0\0\0\377\377", 16)}}});
    unsigned seed = 7;
    for (size_t i = 0; i < 1500; ++i)
    {
        Octets bad = good;
        if (i < good.size() && i % 2 == 0)
        {
            bad.resize(i);
        }
        for (int changes = 0; changes < 3 && !bad.empty(); ++changes)
        {
            seed = seed * 1103515245 + 12345;
            bad[(seed >> 8) % bad.size()] = static_cast<unsigned char>(seed >> 24);
        }
        ComPtr<IWICBitmapFrameDecode> frame;
        if (FAILED(OpenFrame(bad, frame)))
        {
            continue;
        }
        UINT width = 0;
        UINT height = 0;
        frame->GetSize(&width, &height);
        const WICRect top = {0, 0, static_cast<INT>(width), 1};
        Octets row(size_t{width} * 4);
        frame->CopyPixels(&top, width * 4, static_cast<UINT>(row.size()), row.data());
        Octets result;
        if (height <= 4096 && SUCCEEDED(Rewrite(bad, {}, result)))
        {
            EXPECT_FALSE(result.empty());
        }
    }
}

TEST(JpegDecoder, CopiesAnyPartInItsOwnFormat)
{
    const struct
    {
        SampleOptions Options;
        const GUID *Format;
        UINT Pixel;
    } cases[] = {{{}, &GUID_WICPixelFormat24bppBGR, 3},
                 {{.Components = 1}, &GUID_WICPixelFormat8bppGray, 1},
                 {{.Components = 4}, &GUID_WICPixelFormat32bppCMYK, 4},
                 {{.Progressive = true}, &GUID_WICPixelFormat24bppBGR, 3}};
    for (const auto &sample : cases)
    {
        ComPtr<IWICBitmapFrameDecode> frame;
        ASSERT_EQ(S_OK, OpenFrame(MakeJpeg(sample.Options), frame));
        WICPixelFormatGUID format{};
        EXPECT_EQ(S_OK, frame->GetPixelFormat(&format));
        EXPECT_EQ(*sample.Format, format);
        const UINT stride = 61 * sample.Pixel;
        Octets whole(stride * 43);
        ASSERT_EQ(S_OK, frame->CopyPixels(nullptr, stride, static_cast<UINT>(whole.size()), whole.data()));
        for (const WICRect &part :
             {WICRect{0, 20, 61, 3}, WICRect{5, 23, 10, 4}, WICRect{60, 42, 1, 1}, WICRect{0, 0, 2, 2}})
        {
            const UINT width = static_cast<UINT>(part.Width) * sample.Pixel;
            Octets pixels(width * static_cast<UINT>(part.Height));
            ASSERT_EQ(S_OK, frame->CopyPixels(&part, width, static_cast<UINT>(pixels.size()), pixels.data()));
            for (INT y = 0; y < part.Height; ++y)
            {
                const auto *expected =
                    &whole[stride * static_cast<UINT>(part.Y + y) + sample.Pixel * static_cast<UINT>(part.X)];
                EXPECT_EQ(Octets(expected, expected + width),
                          Octets(pixels.begin() + y * width, pixels.begin() + (y + 1) * width));
            }
        }
        const WICRect outside = {60, 0, 2, 1};
        EXPECT_EQ(E_INVALIDARG, frame->CopyPixels(&outside, stride, 1000, whole.data()));
        EXPECT_EQ(WINCODEC_ERR_INSUFFICIENTBUFFER, frame->CopyPixels(nullptr, stride, 100, whole.data()));
    }
}

TEST(JpegDecoder, GivesInkAsInk)
{
    ComPtr<IWICBitmapFrameDecode> frame;
    const SampleOptions options{.Components = 4, .HorizontalSampling = 1, .VerticalSampling = 1, .Quality = 100};
    const Octets file = MakeJpeg(options);
    ASSERT_EQ(S_OK, OpenFrame(file, frame));
    unsigned char pixel[4] = {};
    const WICRect first = {0, 0, 1, 1};
    ASSERT_EQ(S_OK, frame->CopyPixels(&first, 4, 4, pixel));
    EXPECT_EQ(255 - DecodeJpeg(file)[16], pixel[0]) << "Adobe's files store the complement";
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

TEST(JpegDecoder, PassesAFailureOfTheStreamOn)
{
    ComPtr<IWICBitmapDecoder> decoder;
    ASSERT_EQ(S_OK, CreateJpegDecoder(decoder.Put()));
    UINT count = 9;
    EXPECT_EQ(S_OK, decoder->GetFrameCount(&count));
    EXPECT_EQ(0u, count);
    ComPtr<IWICBitmapFrameDecode> frame;
    EXPECT_EQ(WINCODEC_ERR_FRAMEMISSING, decoder->GetFrame(0, frame.Put()));
    EXPECT_EQ(E_INVALIDARG, decoder->Initialize(nullptr, WICDecodeMetadataCacheOnDemand));
    EXPECT_EQ(S_OK, decoder->Initialize(StreamOf(MakeJpeg({})).Get(), WICDecodeMetadataCacheOnDemand));
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE,
              decoder->Initialize(StreamOf(MakeJpeg({})).Get(), WICDecodeMetadataCacheOnDemand));
    EXPECT_EQ(E_INVALIDARG, decoder->GetFrame(1, frame.Put()));
}
