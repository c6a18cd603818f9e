// The encoder's options, states and colour profile, and the bitmap in memory that it takes.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/jpeg/JpegCodec.h"

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

ComPtr<IWICBitmap> MakeBitmap(REFWICPixelFormatGUID format, UINT pixel)
{
    Octets pixels(64 * 48 * pixel);
    for (size_t i = 0; i < pixels.size(); ++i)
    {
        pixels[i] = static_cast<unsigned char>((i / pixel % 64) * 3 + i % pixel * 20);
    }
    ComPtr<IWICBitmap> bitmap;
    EXPECT_EQ(S_OK, CreateMemoryBitmap(64, 48, format, 64 * pixel, static_cast<UINT>(pixels.size()), pixels.data(),
                                       bitmap.Put()));
    return bitmap;
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
        ASSERT_EQ(S_OK, encoding.Frame->WriteSource(MakeBitmap(GUID_WICPixelFormat24bppBGR, 3).Get(), nullptr));
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

TEST(JpegEncoder, ConvertsTheSourcesFormat)
{
    for (const auto &[format, pixel] : {std::pair{&GUID_WICPixelFormat8bppGray, 1u},
                                        {&GUID_WICPixelFormat32bppBGRA, 4u},
                                        {&GUID_WICPixelFormat24bppRGB, 3u},
                                        {&GUID_WICPixelFormat32bppCMYK, 4u}})
    {
        Encoding encoding;
        WICPixelFormatGUID wanted = GUID_WICPixelFormat48bppRGB;
        encoding.Frame->Initialize(nullptr);
        EXPECT_EQ(S_OK, encoding.Frame->SetPixelFormat(&wanted));
        EXPECT_EQ(GUID_WICPixelFormat24bppBGR, wanted) << "the nearest that it has";
        EXPECT_EQ(S_OK, encoding.Frame->WriteSource(MakeBitmap(*format, pixel).Get(), nullptr));
        EXPECT_FALSE(DecodeJpeg(BytesOf(encoding.Stream.Get())).empty());
    }
}

TEST(JpegEncoder, KeepsToTheOrderOfItsCalls)
{
    ComPtr<IWICBitmapEncoder> fresh;
    ASSERT_EQ(S_OK, CreateJpegEncoder(fresh.Put()));
    ComPtr<IWICBitmapFrameEncode> none;
    EXPECT_EQ(WINCODEC_ERR_NOTINITIALIZED, fresh->CreateNewFrame(none.Put(), nullptr));
    EXPECT_EQ(WINCODEC_ERR_NOTINITIALIZED, fresh->Commit());

    Encoding encoding;
    IWICBitmapFrameEncode *frame = encoding.Frame.Get();
    Octets row(64 * 3);
    ComPtr<IWICMetadataQueryWriter> queries;
    EXPECT_EQ(WINCODEC_ERR_NOTINITIALIZED, frame->SetSize(64, 2));
    EXPECT_EQ(WINCODEC_ERR_NOTINITIALIZED, frame->Commit());
    EXPECT_EQ(WINCODEC_ERR_NOTINITIALIZED, frame->GetMetadataQueryWriter(queries.Put()));
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, encoding.Encoder->Commit());
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, encoding.Encoder->CreateNewFrame(none.Put(), nullptr)) << "one frame only";
    EXPECT_EQ(WINCODEC_ERR_PROPERTYNOTSUPPORTED, encoding.SetOption(TEXT("Colour"), VT_R4, 1));
    EXPECT_EQ(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE, encoding.SetOption(TEXT("ImageQuality"), VT_UI1, 1));
    ASSERT_EQ(S_OK, frame->Initialize(encoding.Bag.Get()));
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, frame->Initialize(nullptr));
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, frame->WritePixels(1, 192, 192, row.data())) << "no size yet";
    EXPECT_EQ(WINCODEC_ERR_IMAGESIZEOUTOFRANGE, frame->SetSize(65501, 2));
    ASSERT_EQ(S_OK, frame->SetSize(64, 2));
    ASSERT_EQ(S_OK, frame->GetMetadataQueryWriter(queries.Put()));
    EXPECT_EQ(WINCODEC_ERR_SOURCERECTDOESNOTMATCHDIMENSIONS,
              frame->WriteSource(MakeBitmap(GUID_WICPixelFormat24bppBGR, 3).Get(), nullptr));
    ASSERT_EQ(S_OK, frame->WritePixels(1, 192, 192, row.data()));
    const PROPVARIANT late = QueryValue::Short(1);
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, queries->SetMetadataByName(TEXT("/app1/ifd/{ushort=274}"), &late));
    EXPECT_EQ(WINCODEC_ERR_WRONGSTATE, frame->Commit()) << "a row is missing";
    EXPECT_EQ(WINCODEC_ERR_CODECTOOMANYSCANLINES, frame->WritePixels(2, 192, 384, row.data()));
    ASSERT_EQ(S_OK, frame->WritePixels(1, 192, 192, row.data()));
    EXPECT_EQ(S_OK, frame->Commit());
    EXPECT_EQ(S_OK, encoding.Encoder->Commit());
    EXPECT_FALSE(DecodeJpeg(BytesOf(encoding.Stream.Get())).empty());
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

TEST(MemoryBitmap, LocksAndCopies)
{
    const ComPtr<IWICBitmap> bitmap = MakeBitmap(GUID_WICPixelFormat24bppBGR, 3);
    ComPtr<IWICBitmapLock> lock;
    ComPtr<IWICBitmapLock> second;
    const WICRect part = {2, 3, 4, 5};
    ASSERT_EQ(S_OK, bitmap->Lock(&part, WICBitmapLockWrite, lock.Put()));
    EXPECT_EQ(WINCODEC_ERR_ALREADYLOCKED, bitmap->Lock(&part, WICBitmapLockRead, second.Put()));
    UINT size = 0;
    BYTE *data = nullptr;
    ASSERT_EQ(S_OK, lock->GetDataPointer(&size, &data));
    data[0] = 250;
    lock.Reset();
    BYTE pixel[3] = {};
    const WICRect one = {2, 3, 1, 1};
    EXPECT_EQ(S_OK, bitmap->CopyPixels(&one, 3, 3, pixel));
    EXPECT_EQ(250, pixel[0]);
    double x = 9;
    double y = 9;
    EXPECT_EQ(S_OK, bitmap->GetResolution(&x, &y));
    EXPECT_EQ(0, x);
    EXPECT_EQ(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT,
              CreateMemoryBitmap(1, 1, GUID_WICPixelFormat48bppRGB, 6, 6, pixel, ComPtr<IWICBitmap>().Put()));
}
