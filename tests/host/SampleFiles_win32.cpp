#include "tests/host/SampleFiles.h"

#include "com/ComPtr.h"
#include "com/Hresult.h"

#include <wincodec.h>

#include <fstream>
#include <vector>

namespace
{
struct Apartment
{
    Apartment() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~Apartment() { CoUninitialize(); }
};

// Blue, green, red, and alpha 0.
std::vector<BYTE> QuartersOf(int width, int height)
{
    std::vector<BYTE> pixels;
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            static constexpr BYTE colours[4][3] = {{0, 0, 255}, {0, 255, 0}, {255, 0, 0}, {255, 255, 255}};
            const BYTE *colour = colours[(x >= width / 2) + 2 * (y >= height / 2)];
            pixels.insert(pixels.end(), colour, colour + 3);
            pixels.push_back(0);
        }
    }
    return pixels;
}

void Put(std::string &bytes, UINT value, int size)
{
    for (int i = 0; i < size; ++i)
    {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

// The system's encoder writes no orientation, so the file is put together here: one directory, one strip.
std::string MakeTiff(const std::vector<BYTE> &pixels, UINT width, UINT height, const PictureOptions &options)
{
    enum Type : UINT
    {
        Short = 3,
        Long = 4,
        Rational = 5
    };
    constexpr UINT fields = 13;
    constexpr UINT behind = 8 + 2 + 12 * fields + 4;
    const UINT orientation = options.orientation == 0 ? 1 : static_cast<UINT>(options.orientation);
    const UINT dpi = options.dpi == 0 ? 96 : static_cast<UINT>(options.dpi);
    // Tag, type, count, and the value or where it lies.
    const UINT directory[fields][4] = {
        {256, Long, 1, width},
        {257, Long, 1, height},
        {258, Short, 3, behind},
        {259, Short, 1, 1},
        {262, Short, 1, 2},
        {273, Long, 1, behind + 16},
        {274, Short, 1, orientation},
        {277, Short, 1, 3},
        {278, Long, 1, height},
        {279, Long, 1, width * height * 3},
        {282, Rational, 1, behind + 8},
        {283, Rational, 1, behind + 8},
        {296, Short, 1, 2},
    };
    std::string bytes("II*\0\x08\0\0\0\x0D\0", 10);
    for (const auto &[tag, type, count, value] : directory)
    {
        Put(bytes, tag, 2);
        Put(bytes, type, 2);
        Put(bytes, count, 4);
        Put(bytes, value, 4);
    }
    for (const UINT word : {0u, 8u << 16 | 8u, 8u, dpi, 1u})
    {
        Put(bytes, word, 4);
    }
    for (size_t i = 0; i < pixels.size(); i += 4)
    {
        bytes.append(
            {static_cast<char>(pixels[i + 2]), static_cast<char>(pixels[i + 1]), static_cast<char>(pixels[i])});
    }
    return bytes;
}

void Encode(const std::filesystem::path &file, const GUID &container, std::vector<BYTE> pixels, UINT width,
            UINT height, const PictureOptions &options)
{
    const Apartment apartment;
    ComPtr<IWICImagingFactory> factory;
    ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                   __uuidof(IWICImagingFactory), factory.PutVoid()));
    ComPtr<IWICStream> stream;
    ThrowIfFailed(factory->CreateStream(stream.Put()));
    ThrowIfFailed(stream->InitializeFromFilename(file.c_str(), GENERIC_WRITE));
    ComPtr<IWICBitmapEncoder> encoder;
    ThrowIfFailed(factory->CreateEncoder(container, nullptr, encoder.Put()));
    ThrowIfFailed(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache));
    ComPtr<IWICBitmapFrameEncode> frame;
    ThrowIfFailed(encoder->CreateNewFrame(frame.Put(), nullptr));
    ThrowIfFailed(frame->Initialize(nullptr));
    ThrowIfFailed(frame->SetSize(width, height));
    if (options.dpi != 0)
    {
        ThrowIfFailed(frame->SetResolution(options.dpi, options.dpi));
    }
    const GUID pixelFormat = options.alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat32bppBGR;
    ComPtr<IWICBitmap> bitmap;
    ThrowIfFailed(factory->CreateBitmapFromMemory(width, height, pixelFormat, width * 4,
                                                  static_cast<UINT>(pixels.size()), pixels.data(), bitmap.Put()));
    WICPixelFormatGUID taken = options.alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
    ThrowIfFailed(frame->SetPixelFormat(&taken));
    ThrowIfFailed(frame->WriteSource(bitmap.Get(), nullptr));
    ThrowIfFailed(frame->Commit());
    ThrowIfFailed(encoder->Commit());
}
} // namespace

void MakeSample(const std::filesystem::path &file, int width, int height, const PictureOptions &options)
{
    const std::vector<BYTE> pixels = QuartersOf(width, height);
    const auto columns = static_cast<UINT>(width);
    const auto rows = static_cast<UINT>(height);
    if (file.extension() == ".tif")
    {
        std::ofstream(file, std::ios::binary) << MakeTiff(pixels, columns, rows, options);
        return;
    }
    Encode(file, file.extension() == ".png" ? GUID_ContainerFormatPng : GUID_ContainerFormatJpeg, pixels, columns,
           rows, options);
}
