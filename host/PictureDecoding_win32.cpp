#include "host/PictureDecoding.h"

#include "com/WholeFile.h"
#include "host/Apartment.h"
#include "host/FileNames.h"
#include "host/FrameOrientation_win32.h"
#include "host/ImageMetadata.h"
#include "host/JpegFile.h"
#include "host/SystemWords.h"

#include "com/ComPtr.h"
#include "com/Hresult.h"

#include <wincodec.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <future>
#include <iterator>
#include <optional>

namespace
{
// Bytes that one call copies: large for the sake of decoders that start from the beginning with each call,
// small enough to notice stop soon.
constexpr size_t BandBytes = size_t{16} << 20;

// More than a file has; a crafted one may claim any number.
constexpr UINT MostContexts = 16;

// Since Windows 10; it takes every pixel of the source into account, as Fant does.
constexpr auto HighQualityCubic = static_cast<WICBitmapInterpolationMode>(4);

[[noreturn]] void ThrowDecoding(HRESULT code)
{
    switch (code)
    {
    case E_OUTOFMEMORY:
        throw DecodingError(code, "needs more memory than there is");
    // No decoder knows the file's first bytes. One that knows them and fails later has met damage, whatever
    // it calls that.
    case WINCODEC_ERR_COMPONENTNOTFOUND:
        throw DecodingError(WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "is not a picture format that Halvora can read");
    default:
        throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged or was cut short: " + SystemWords(code));
    }
}

void Check(HRESULT code)
{
    if (FAILED(code))
    {
        ThrowDecoding(code);
    }
}

struct Size
{
    UINT width = 0;
    UINT height = 0;
};

Size SizeOf(IWICBitmapSource *source)
{
    Size size;
    Check(source->GetSize(&size.width, &size.height));
    RequireDecodableSize(size.width, size.height);
    return size;
}

Size Reduced(const Size &size, UINT longEdge)
{
    const UINT longest = std::max(size.width, size.height);
    if (longEdge == 0 || longest <= longEdge)
    {
        return size;
    }
    const auto scaled = [&](UINT edge) {
        return std::max(1u, static_cast<UINT>(std::lround(double(edge) * longEdge / longest)));
    };
    return {scaled(size.width), scaled(size.height)};
}

class PictureReading
{
public:
    PictureReading(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
        : m_longEdge(longEdge), m_stop(stop), m_proportions(JfifProportions(file))
    {
        Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                               __uuidof(IWICImagingFactory), m_factory.PutVoid()));
    }

    DecodedPicture Read(const std::filesystem::path &file)
    {
        ComPtr<IWICBitmapDecoder> decoder;
        Check(m_factory->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ,
                                                   WICDecodeMetadataCacheOnDemand, decoder.Put()));
        return ReadFrame(*decoder.Get());
    }

    // For decoders that wait for the end of image, though all pixels are there.
    DecodedPicture ReadWithEnd(const std::filesystem::path &file)
    {
        std::ifstream content(file, std::ios::binary);
        std::vector<char> bytes(std::istreambuf_iterator<char>(content), {});
        bytes.insert(bytes.end(), {'\xFF', '\xD9'});
        ComPtr<IWICStream> stream;
        Check(m_factory->CreateStream(stream.Put()));
        Check(stream->InitializeFromMemory(reinterpret_cast<BYTE *>(bytes.data()),
                                           static_cast<DWORD>(bytes.size())));
        ComPtr<IWICBitmapDecoder> decoder;
        Check(m_factory->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                                 decoder.Put()));
        return ReadFrame(*decoder.Get());
    }

private:
    DecodedPicture ReadFrame(IWICBitmapDecoder &decoder)
    {
        ComPtr<IWICBitmapFrameDecode> frame;
        Check(decoder.GetFrame(0, frame.Put()));
        SizeOf(frame.Get());
        DecodedPicture picture = InScreenColours(frame);
        frame->GetResolution(&picture.dpiX, &picture.dpiY);
        if (m_proportions && picture.dpiX == picture.dpiY)
        {
            picture.dpiX = m_proportions->x;
            picture.dpiY = m_proportions->y;
        }
        return Upright(std::move(picture), OrientationOfFrame(*frame.Get()));
    }

    // By the frame's profile if it has one that can be used.
    DecodedPicture InScreenColours(const ComPtr<IWICBitmapFrameDecode> &frame)
    {
        if (const auto converted = Converted(frame.Get()))
        {
            try
            {
                return Reduce(converted);
            }
            catch (const DecodingError &error)
            {
                // That a profile doesn't fit its picture may show as late as here.
                if (error.Code() != WINCODEC_ERR_BADIMAGE)
                {
                    throw;
                }
            }
        }
        return Reduce(frame);
    }

    DecodedPicture Reduce(ComPtr<IWICBitmapSource> source)
    {
        const Size size = SizeOf(source.Get());
        const Size wanted = Reduced(size, m_longEdge);
        // Colours that are multiplied with their alpha can be scaled, and laid on white afterwards.
        source = ConvertTo(GUID_WICPixelFormat32bppPBGRA, source);
        if (wanted.width != size.width || wanted.height != size.height)
        {
            source = Scale(source, wanted);
        }
        return CopyOnWhite(*source.Get(), wanted);
    }

    ComPtr<IWICBitmapSource> ConvertTo(const GUID &format, const ComPtr<IWICBitmapSource> &source)
    {
        ComPtr<IWICFormatConverter> converter;
        Check(m_factory->CreateFormatConverter(converter.Put()));
        Check(converter->Initialize(source.Get(), format, WICBitmapDitherTypeNone, nullptr, 0,
                                    WICBitmapPaletteTypeCustom));
        return converter;
    }

    // The frame's profile, or the colour space that its EXIF block names instead of one. The component gives
    // both alike, in an order that it doesn't promise, and of the EXIF block less than ExifFields.h tells.
    ComPtr<IWICColorContext> ProfileOf(IWICBitmapFrameDecode *frame)
    {
        UINT count = 0;
        if (FAILED(frame->GetColorContexts(0, nullptr, &count)))
        {
            count = 0;
        }
        std::vector<ComPtr<IWICColorContext>> contexts(std::min(count, MostContexts));
        std::vector<IWICColorContext *> room;
        for (ComPtr<IWICColorContext> &context : contexts)
        {
            Check(m_factory->CreateColorContext(context.Put()));
            room.push_back(context.Get());
        }
        const bool given = !room.empty() &&
                           SUCCEEDED(frame->GetColorContexts(static_cast<UINT>(room.size()), room.data(), &count));
        for (const ComPtr<IWICColorContext> &context : contexts)
        {
            WICColorContextType type = WICColorContextUninitialized;
            if (given && SUCCEEDED(context->GetType(&type)) && type == WICColorContextProfile)
            {
                return context;
            }
        }
        ComPtr<IWICMetadataQueryReader> reader;
        ComPtr<IWICColorContext> adobe;
        constexpr UINT exifAdobeRgb = 2;
        if (SUCCEEDED(frame->GetMetadataQueryReader(reader.Put())) && IsFrameInAdobeRgb(*reader.Get()) &&
            SUCCEEDED(m_factory->CreateColorContext(adobe.Put())) &&
            SUCCEEDED(adobe->InitializeFromExifColorSpace(exifAdobeRgb)))
        {
            return adobe;
        }
        return nullptr;
    }

    // Null where there is no profile, or none that the component takes.
    ComPtr<IWICBitmapSource> Converted(IWICBitmapFrameDecode *frame)
    {
        const ComPtr<IWICColorContext> profile = ProfileOf(frame);
        ComPtr<IWICColorContext> screen;
        ComPtr<IWICColorTransform> transform;
        constexpr UINT exifSrgb = 1;
        if (!profile || FAILED(m_factory->CreateColorContext(screen.Put())) ||
            FAILED(screen->InitializeFromExifColorSpace(exifSrgb)) ||
            FAILED(m_factory->CreateColorTransformer(transform.Put())) ||
            FAILED(transform->Initialize(frame, profile.Get(), screen.Get(), GUID_WICPixelFormat32bppBGRA)))
        {
            return nullptr;
        }
        return transform;
    }

    ComPtr<IWICBitmapSource> Scale(const ComPtr<IWICBitmapSource> &source, const Size &wanted)
    {
        ComPtr<IWICBitmapScaler> scaler;
        Check(m_factory->CreateBitmapScaler(scaler.Put()));
        if (FAILED(scaler->Initialize(source.Get(), wanted.width, wanted.height, HighQualityCubic)))
        {
            Check(m_factory->CreateBitmapScaler(scaler.Put()));
            Check(scaler->Initialize(source.Get(), wanted.width, wanted.height, WICBitmapInterpolationModeFant));
        }
        return scaler;
    }

    DecodedPicture CopyOnWhite(IWICBitmapSource &source, const Size &size)
    {
        DecodedPicture picture;
        picture.width = size.width;
        picture.height = size.height;
        picture.pixels.resize(picture.RowBytes() * size.height);
        const size_t row = size_t{size.width} * 4;
        const auto lines = static_cast<UINT>(std::clamp<size_t>(BandBytes / row, 1, size.height));
        std::vector<BYTE> band(row * lines);
        BYTE *to = picture.pixels.data();
        for (UINT top = 0; top < size.height; top += lines)
        {
            if (m_stop != nullptr && *m_stop)
            {
                throw DecodingError(E_ABORT, "was not finished");
            }
            const UINT count = std::min(lines, size.height - top);
            const WICRect part = {0, static_cast<INT>(top), static_cast<INT>(size.width), static_cast<INT>(count)};
            Check(source.CopyPixels(&part, static_cast<UINT>(row), static_cast<UINT>(row * count), band.data()));
            for (const BYTE *from = band.data(), *const end = from + row * count; from != end; from += 4)
            {
                const int white = 255 - from[3];
                for (int i = 0; i < 3; ++i)
                {
                    *to++ = static_cast<BYTE>(std::min(from[i] + white, 255));
                }
            }
        }
        return picture;
    }

    const UINT m_longEdge;
    const std::atomic<bool> *const m_stop;
    const std::optional<DotsPerInch> m_proportions; // the component gives the same for both axes then
    ComPtr<IWICImagingFactory> m_factory;
};
} // namespace

DecodedPicture DecodePicture(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    if (const std::error_code fault = TryToRead(file))
    {
        throw DecodingError(HRESULT_FROM_WIN32(static_cast<DWORD>(fault.value())),
                            "can't be read: " + FileErrorWords(fault));
    }
    const Apartment apartment;
    // The check costs a fraction of the decoding, and runs beside it.
    auto check = std::async(std::launch::async, SurveyFile, file, stop);
    PictureReading reading(file, longEdge, stop);
    DecodedPicture picture;
    try
    {
        picture = reading.Read(file);
    }
    catch (const DecodingError &)
    {
        const PictureSurvey survey = check.get();
        if (survey.state != PictureState::Whole || survey.hasEnd)
        {
            throw;
        }
        return reading.ReadWithEnd(file);
    }
    const PictureSurvey survey = check.get();
    if (survey.state == PictureState::Damaged)
    {
        throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged or was cut short: " + survey.damage);
    }
    return picture;
}
