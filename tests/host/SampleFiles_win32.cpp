#include "tests/host/SampleFiles.h"

#include "com/ComPtr.h"
#include "com/Hresult.h"

#include <wincodec.h>

#include <algorithm>
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

// The system's encoder writes no orientation, so the file is put together here: one directory, one strip.
class TiffFile
{
public:
    explicit TiffFile(std::vector<BYTE> strip) : m_strip(std::move(strip)) {}

    void Short(UINT tag, UINT value) { Entry(tag, 3, value); }
    void Long(UINT tag, UINT value) { Entry(tag, 4, value); }
    void ThreeShorts(UINT tag, UINT value) { Far(tag, 3, 3, {value | value << 16, value}); }
    void Rational(UINT tag, UINT value) { Far(tag, 5, 1, {value, 1}); }

    std::string Bytes()
    {
        constexpr UINT header = 8;
        Long(279, static_cast<UINT>(m_strip.size()));
        const UINT directory = 2 + 12 * static_cast<UINT>(m_entries.size() + 1) + 4;
        const UINT behind = header + directory;
        Long(273, behind + static_cast<UINT>(m_far.size()));
        std::string bytes("II*\0", 4);
        Put(bytes, header, 4);
        Put(bytes, static_cast<UINT>(m_entries.size()), 2);
        std::sort(m_entries.begin(), m_entries.end(), [](const auto &a, const auto &b) { return a.tag < b.tag; });
        for (const auto &entry : m_entries)
        {
            Put(bytes, entry.tag, 2);
            Put(bytes, entry.type, 2);
            Put(bytes, entry.count, 4);
            Put(bytes, entry.isFar ? behind + entry.value : entry.value, 4);
        }
        Put(bytes, 0, 4);
        bytes += m_far;
        return bytes.append(m_strip.begin(), m_strip.end());
    }

private:
    struct Field
    {
        UINT tag;
        UINT type;
        UINT count;
        UINT value;
        bool isFar;
    };

    static void Put(std::string &bytes, UINT value, int size)
    {
        for (int i = 0; i < size; ++i)
        {
            bytes += static_cast<char>(value >> (8 * i));
        }
    }

    void Entry(UINT tag, UINT type, UINT value) { m_entries.push_back({tag, type, 1, value, false}); }

    void Far(UINT tag, UINT type, UINT count, const std::vector<UINT> &values)
    {
        m_entries.push_back({tag, type, count, static_cast<UINT>(m_far.size()), true});
        for (const UINT value : values)
        {
            Put(m_far, value, 4);
        }
    }

    std::vector<Field> m_entries;
    std::string m_far;
    std::vector<BYTE> m_strip;
};

std::string MakeTiff(const std::vector<BYTE> &pixels, UINT width, UINT height, const PictureOptions &options)
{
    std::vector<BYTE> strip;
    for (size_t i = 0; i < pixels.size(); i += 4)
    {
        strip.insert(strip.end(), {pixels[i + 2], pixels[i + 1], pixels[i]});
    }
    TiffFile tiff(std::move(strip));
    tiff.Long(256, width);
    tiff.Long(257, height);
    tiff.ThreeShorts(258, 8);
    tiff.Short(259, 1);
    tiff.Short(262, 2);
    tiff.Short(277, 3);
    tiff.Long(278, height);
    if (options.orientation != 0)
    {
        tiff.Short(274, static_cast<UINT>(options.orientation));
    }
    if (options.dpi != 0)
    {
        tiff.Rational(282, static_cast<UINT>(options.dpi));
        tiff.Rational(283, static_cast<UINT>(options.dpi));
        tiff.Short(296, 2);
    }
    return tiff.Bytes();
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
