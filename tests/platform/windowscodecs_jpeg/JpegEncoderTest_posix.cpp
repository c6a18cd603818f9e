// The encoder's options, states and colour profile.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/Codecs.h"

#include "host/PictureSource.h"

#include <gtest/gtest.h>

namespace
{
struct Encoding
{
    ComPtr<IStream> Stream = StreamOf({});
    ComPtr<IWICBitmapEncoder> Encoder;
    ComPtr<IWICBitmapFrameEncode> Frame;
    ComPtr<IPropertyBag2> Bag;

    Encoding()
    {
        CreateJpegEncoder(Encoder.Put());
        Encoder->Initialize(Stream.Get(), WICBitmapEncoderNoCache);
        Encoder->CreateNewFrame(Frame.Put(), Bag.Put());
    }

    HRESULT SetOption(WideText name, VARTYPE type, float number)
    {
        PROPBAG2 option{PROPBAG2_TYPE_DATA, type, 0, 0, name.data(), {}};
        VARIANT value{};
        V_VT(&value) = type;
        if (type == VT_R4)
        {
            V_R4(&value) = number;
        }
        else
        {
            V_UI1(&value) = static_cast<BYTE>(number);
        }
        return Bag->Write(1, &option, &value);
    }
};

// 64 by 48, each row other than the one above it.
ComPtr<IWICBitmapSource> Slope()
{
    DecodedPicture picture{64, 48, 96, 96, std::vector<BYTE>(64 * 48 * 3)};
    for (size_t i = 0; i < picture.pixels.size(); ++i)
    {
        picture.pixels[i] = static_cast<BYTE>((i / 3 % 64) * 2 + i % 3 * 20 + i / 192);
    }
    return MakePictureSource(std::make_shared<const DecodedPicture>(std::move(picture)));
}
} // namespace

TEST(JpegEncoder, TakesQualityAndSubsampling)
{
    const struct
    {
        float Quality;
        BYTE Subsampling;
        int Quantizer; // of the standard's luminance table, scaled: 16 * (200 - 2 * quality) / 100
        int Horizontal;
        int Vertical;
    } cases[] = {{0.85f, WICJpegYCrCbSubsampling444, 5, 1, 1},
                 {0.75f, WICJpegYCrCbSubsampling420, 8, 2, 2},
                 {0.5f, WICJpegYCrCbSubsampling422, 16, 2, 1},
                 {0.9f, WICJpegYCrCbSubsamplingDefault, 3, 2, 2}};
    for (const auto &sample : cases)
    {
        Encoding encoding;
        ASSERT_EQ(S_OK, encoding.SetOption(TEXT("ImageQuality"), VT_R4, sample.Quality));
        ASSERT_EQ(S_OK, encoding.SetOption(TEXT("JpegYCrCbSubsampling"), VT_UI1, sample.Subsampling));
        ASSERT_EQ(S_OK, encoding.Frame->Initialize(encoding.Bag.Get()));
        ASSERT_EQ(S_OK, encoding.Frame->SetResolution(240, 240));
        ASSERT_EQ(S_OK, encoding.Frame->SetSize(64, 48));
        ASSERT_EQ(S_OK, encoding.Frame->WriteSource(Slope().Get(), nullptr));
        ASSERT_EQ(S_OK, encoding.Frame->Commit());
        ASSERT_EQ(S_OK, encoding.Encoder->Commit());
        const JpegFacts facts = FactsOf(BytesOf(encoding.Stream.Get()));
        EXPECT_EQ(sample.Quantizer, facts.FirstQuantizer);
        EXPECT_EQ(sample.Horizontal, facts.HorizontalSampling);
        EXPECT_EQ(sample.Vertical, facts.VerticalSampling);
        EXPECT_EQ(240, facts.DensityX);
        EXPECT_EQ(64, facts.Width);
    }
}

TEST(JpegEncoder, RefusesWhatItCannotWrite)
{
    Encoding encoding;
    IWICBitmapFrameEncode *frame = encoding.Frame.Get();
    EXPECT_EQ(WINCODEC_ERR_PROPERTYNOTSUPPORTED, encoding.SetOption(TEXT("Colour"), VT_R4, 1));
    EXPECT_EQ(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE, encoding.SetOption(TEXT("ImageQuality"), VT_UI1, 1));
    ASSERT_EQ(S_OK, frame->Initialize(encoding.Bag.Get()));
    EXPECT_EQ(WINCODEC_ERR_IMAGESIZEOUTOFRANGE, frame->SetSize(65501, 2));
    ASSERT_EQ(S_OK, frame->SetSize(64, 2));
    EXPECT_EQ(WINCODEC_ERR_SOURCERECTDOESNOTMATCHDIMENSIONS, frame->WriteSource(Slope().Get(), nullptr));
    WICPixelFormatGUID format = GUID_WICPixelFormat48bppRGB;
    EXPECT_EQ(S_OK, frame->SetPixelFormat(&format));
    EXPECT_EQ(GUID_WICPixelFormat24bppBGR, format) << "the one that it has";
}

TEST(JpegEncoder, DropsAColourProfileThatIsNone)
{
    std::string parts = std::string("ICC_PROFILE\0\1\1", 14) + std::string(300, 'x');
    ComPtr<IWICBitmapFrameDecode> frame;
    ASSERT_EQ(S_OK, OpenFrame(MakeJpeg({.Markers = {{0xE2, parts}}}), frame));
    UINT count = 9;
    EXPECT_EQ(S_OK, frame->GetColorContexts(0, nullptr, &count));
    EXPECT_EQ(0u, count);
}
