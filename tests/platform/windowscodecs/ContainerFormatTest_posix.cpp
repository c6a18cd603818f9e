// The imaging factory through CoCreateInstance, as the plug-in reaches it.
#include "com/ComPtr.h"
#include "com/WideText.h"

#include <windows.h>
#include <objbase.h>
#include <olectl.h>
#include <wincodec.h>

#include <gtest/gtest.h>

#include <string_view>

using namespace std::string_view_literals;

namespace
{
class ContainerFormat : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_ALL, IID_PPV_ARGS(m_factory.Put())),
                  S_OK);
    }

    HRESULT Open(std::string_view content, GUID &format)
    {
        ComPtr<IStream> stream;
        EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
        EXPECT_EQ(stream->Write(content.data(), static_cast<ULONG>(content.size()), nullptr), S_OK);
        EXPECT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
        ComPtr<IWICBitmapDecoder> decoder;
        const HRESULT result = m_factory->CreateDecoderFromStream(stream.Get(), nullptr,
                                                                  WICDecodeMetadataCacheOnDemand, decoder.Put());
        return FAILED(result) ? result : decoder->GetContainerFormat(&format);
    }

    ComPtr<IWICImagingFactory> m_factory;
};

TEST_F(ContainerFormat, IsToldByTheFirstBytes)
{
    const struct
    {
        std::string_view head;
        const GUID &format;
    } cases[] = {
        {"\xFF\xD8\xFF\xE0\0\x10JFIF\0\1\1"sv, GUID_ContainerFormatJpeg},
        {"\xFF\xD8\xFF\xE1"sv, GUID_ContainerFormatJpeg},
        {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"sv, GUID_ContainerFormatPng},
        {"GIF87a...."sv, GUID_ContainerFormatGif},
        {"GIF89a...."sv, GUID_ContainerFormatGif},
        {"II*\0\x08\0\0\0"sv, GUID_ContainerFormatTiff},
        {"MM\0*\0\0\0\x08"sv, GUID_ContainerFormatTiff},
        {"BM........"sv, GUID_ContainerFormatBmp},
        {"RIFF\x10\0\0\0WEBPVP8 "sv, GUID_ContainerFormatWebp},
    };
    for (const auto &c : cases)
    {
        GUID format{};
        EXPECT_EQ(Open(c.head, format), S_OK) << c.head;
        EXPECT_TRUE(format == c.format) << c.head;
    }
}

TEST_F(ContainerFormat, OtherContentHasNoDecoder)
{
    for (std::string_view head : {""sv, "GIF"sv, "GIF90a"sv, "\x89PNG\n"sv, "RIFF\x10\0\0\0WAVEfmt "sv, "RIFF"sv,
                                  "%PDF-1.7"sv, "\xFF\xD8"sv})
    {
        GUID format{};
        EXPECT_EQ(Open(head, format), WINCODEC_ERR_COMPONENTNOTFOUND) << head;
    }
}
} // namespace
