#include "platform/windowscodecs/jpeg/BitmapFormats.h"

#include "com/Hresult.h"

#include <cstring>

namespace
{
// Where the colours lie in a pixel.
struct Format
{
    const GUID *Id;
    BYTE Size;
    BYTE Blue;
    BYTE Green;
    BYTE Red;
};

const Format Formats[] = {
    {&GUID_WICPixelFormat24bppBGR, 3, 0, 1, 2},   {&GUID_WICPixelFormat8bppGray, 1, 0, 0, 0},
    {&GUID_WICPixelFormat24bppRGB, 3, 2, 1, 0},   {&GUID_WICPixelFormat32bppBGR, 4, 0, 1, 2},
    {&GUID_WICPixelFormat32bppBGRA, 4, 0, 1, 2},  {&GUID_WICPixelFormat32bppPBGRA, 4, 0, 1, 2},
    {&GUID_WICPixelFormat32bppRGB, 4, 2, 1, 0},   {&GUID_WICPixelFormat32bppRGBA, 4, 2, 1, 0},
    {&GUID_WICPixelFormat32bppPRGBA, 4, 2, 1, 0}, {&GUID_WICPixelFormat32bppCMYK, 4, 0, 0, 0},
};

const Format *Find(REFWICPixelFormatGUID id) noexcept
{
    for (const Format &format : Formats)
    {
        if (*format.Id == id)
        {
            return &format;
        }
    }
    return nullptr;
}

void InkToColour(const BYTE *from, BYTE *to, UINT width) noexcept
{
    for (UINT x = 0; x < width; ++x, from += 4, to += 3)
    {
        const UINT white = 255u - from[3];
        for (int ink = 0; ink < 3; ++ink)
        {
            to[2 - ink] = static_cast<BYTE>(((255u - from[ink]) * white + 127) / 255);
        }
    }
}

// The weights of ITU-R BT.601, as JFIF's luminance has them, in 1/65536.
BYTE Luminance(const BYTE *pixel, const Format &format) noexcept
{
    return static_cast<BYTE>(
        (19595u * pixel[format.Red] + 38470u * pixel[format.Green] + 7471u * pixel[format.Blue] + 32768u) >> 16);
}
} // namespace

UINT BytesOfFormat(REFWICPixelFormatGUID format) noexcept
{
    const Format *found = Find(format);
    return found != nullptr ? found->Size : 0;
}

REFWICPixelFormatGUID FormatOfLayout(PixelLayout layout) noexcept
{
    return layout == PixelLayout::Gray8   ? GUID_WICPixelFormat8bppGray
           : layout == PixelLayout::Bgr24 ? GUID_WICPixelFormat24bppBGR
                                          : GUID_WICPixelFormat32bppCMYK;
}

std::optional<PixelLayout> LayoutOfFormat(REFWICPixelFormatGUID format) noexcept
{
    for (const PixelLayout layout : {PixelLayout::Bgr24, PixelLayout::Gray8, PixelLayout::Cmyk32})
    {
        if (FormatOfLayout(layout) == format)
        {
            return layout;
        }
    }
    return std::nullopt;
}

bool ConvertRow(REFWICPixelFormatGUID id, const BYTE *from, PixelLayout layout, BYTE *to, UINT width) noexcept
{
    const Format *format = Find(id);
    if (FormatOfLayout(layout) == id)
    {
        std::memcpy(to, from, size_t{width} * BytesPerPixel(layout));
        return true;
    }
    const bool ink = id == GUID_WICPixelFormat32bppCMYK;
    if (format == nullptr || layout == PixelLayout::Cmyk32 || (ink && layout != PixelLayout::Bgr24))
    {
        return false;
    }
    if (ink)
    {
        InkToColour(from, to, width);
        return true;
    }
    for (UINT x = 0; x < width; ++x, from += format->Size)
    {
        if (layout == PixelLayout::Gray8)
        {
            *to++ = Luminance(from, *format);
            continue;
        }
        *to++ = from[format->Blue];
        *to++ = from[format->Green];
        *to++ = from[format->Red];
    }
    return true;
}

WICRect CheckCopyRequest(const WICRect *wanted, UINT width, UINT height, UINT bytesPerPixel, UINT stride,
                         UINT bufferSize)
{
    const WICRect all = {0, 0, static_cast<INT>(width), static_cast<INT>(height)};
    const WICRect part = wanted != nullptr ? *wanted : all;
    if (part.X < 0 || part.Y < 0 || part.Width <= 0 || part.Height <= 0 || part.X > all.Width - part.Width ||
        part.Y > all.Height - part.Height || stride / bytesPerPixel < static_cast<UINT>(part.Width))
    {
        ThrowHresult(E_INVALIDARG);
    }
    const ULONGLONG needed = ULONGLONG{stride} * static_cast<UINT>(part.Height - 1) +
                             ULONGLONG{bytesPerPixel} * static_cast<UINT>(part.Width);
    if (bufferSize < needed)
    {
        ThrowHresult(WINCODEC_ERR_INSUFFICIENTBUFFER);
    }
    return part;
}
