#include "host/PictureSource.h"

#include "com/ComObject.h"

#include <cstring>

namespace
{
class CPictureSource final : public ComObject<CPictureSource, IWICBitmapSource>
{
public:
    explicit CPictureSource(std::shared_ptr<const DecodedPicture> picture) : m_picture(std::move(picture)) {}

    STDMETHODIMP GetSize(UINT *width, UINT *height) noexcept override
    {
        if (width == nullptr || height == nullptr)
        {
            return E_INVALIDARG;
        }
        *width = m_picture->width;
        *height = m_picture->height;
        return S_OK;
    }

    STDMETHODIMP GetPixelFormat(WICPixelFormatGUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = GUID_WICPixelFormat24bppBGR;
        return S_OK;
    }

    STDMETHODIMP GetResolution(double *x, double *y) noexcept override
    {
        if (x == nullptr || y == nullptr)
        {
            return E_INVALIDARG;
        }
        *x = m_picture->dpiX;
        *y = m_picture->dpiY;
        return S_OK;
    }

    STDMETHODIMP CopyPalette(IWICPalette *) noexcept override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

    STDMETHODIMP CopyPixels(const WICRect *part, UINT stride, UINT room, BYTE *buffer) noexcept override
    {
        if (buffer == nullptr)
        {
            return E_INVALIDARG;
        }
        const WICRect whole = {0, 0, static_cast<INT>(m_picture->width), static_cast<INT>(m_picture->height)};
        const WICRect &wanted = part != nullptr ? *part : whole;
        if (wanted.X < 0 || wanted.Y < 0 || wanted.Width <= 0 || wanted.Height <= 0 || wanted.X > whole.Width ||
            wanted.Y > whole.Height || wanted.Width > whole.Width - wanted.X ||
            wanted.Height > whole.Height - wanted.Y)
        {
            return E_INVALIDARG;
        }
        const size_t row = size_t(wanted.Width) * 3;
        if (stride < row || size_t(wanted.Height - 1) * stride + row > room)
        {
            return stride < row ? E_INVALIDARG : WINCODEC_ERR_INSUFFICIENTBUFFER;
        }
        const BYTE *from =
            m_picture->pixels.data() + size_t(wanted.Y) * m_picture->RowBytes() + size_t(wanted.X) * 3;
        for (INT line = 0; line < wanted.Height; ++line)
        {
            std::memcpy(buffer, from, row);
            buffer += stride;
            from += m_picture->RowBytes();
        }
        return S_OK;
    }

private:
    const std::shared_ptr<const DecodedPicture> m_picture;
};
} // namespace

ComPtr<IWICBitmapSource> MakePictureSource(std::shared_ptr<const DecodedPicture> picture)
{
    return CPictureSource::Make(std::move(picture));
}
