// A bitmap in memory. A lock gives its pixels as they lie; writers exclude each other and readers.
#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/BitmapFormats.h"
#include "platform/windowscodecs/jpeg/JpegCodec.h"

#include <cstring>
#include <mutex>

namespace
{
class CMemoryBitmap;

class CBitmapLock final : public ComObject<CBitmapLock, IWICBitmapLock>
{
public:
    CBitmapLock(ComPtr<CMemoryBitmap> bitmap, const WICRect &part, bool writing)
        : m_bitmap(std::move(bitmap)), m_part(part), m_writing(writing)
    {
    }
    ~CBitmapLock();

    STDMETHODIMP GetSize(UINT *width, UINT *height) noexcept override
    {
        if (width == nullptr || height == nullptr)
        {
            return E_INVALIDARG;
        }
        *width = static_cast<UINT>(m_part.Width);
        *height = static_cast<UINT>(m_part.Height);
        return S_OK;
    }

    STDMETHODIMP GetStride(UINT *stride) noexcept override;
    STDMETHODIMP GetDataPointer(UINT *size, BYTE **data) noexcept override;
    STDMETHODIMP GetPixelFormat(WICPixelFormatGUID *format) noexcept override;

private:
    ComPtr<CMemoryBitmap> m_bitmap;
    WICRect m_part;
    bool m_writing;
};

class CMemoryBitmap final : public ComObject<CMemoryBitmap, Answers<IWICBitmap, IWICBitmapSource>>
{
public:
    CMemoryBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride, Bytes pixels)
        : m_width(width), m_height(height), m_format(format), m_stride(stride), m_pixels(std::move(pixels))
    {
    }

    STDMETHODIMP GetSize(UINT *width, UINT *height) noexcept override
    {
        if (width == nullptr || height == nullptr)
        {
            return E_INVALIDARG;
        }
        *width = m_width;
        *height = m_height;
        return S_OK;
    }

    STDMETHODIMP GetPixelFormat(WICPixelFormatGUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = m_format;
        return S_OK;
    }

    STDMETHODIMP GetResolution(double *x, double *y) noexcept override
    {
        if (x == nullptr || y == nullptr)
        {
            return E_INVALIDARG;
        }
        *x = m_dpiX;
        *y = m_dpiY;
        return S_OK;
    }

    STDMETHODIMP CopyPalette(IWICPalette *) noexcept override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

    STDMETHODIMP CopyPixels(const WICRect *wanted, UINT stride, UINT size, BYTE *buffer) noexcept override
    {
        return AtBoundary([&] {
            if (buffer == nullptr)
            {
                return E_INVALIDARG;
            }
            const UINT pixel = BytesOfFormat(m_format);
            const WICRect part = CheckCopyRequest(wanted, m_width, m_height, pixel, stride, size);
            for (INT y = 0; y < part.Height; ++y)
            {
                std::memcpy(buffer + size_t{stride} * static_cast<UINT>(y), At(part.X, part.Y + y),
                            size_t{pixel} * static_cast<UINT>(part.Width));
            }
            return S_OK;
        });
    }

    STDMETHODIMP Lock(const WICRect *wanted, DWORD flags, IWICBitmapLock **lock) noexcept override
    {
        if (lock == nullptr)
        {
            return E_INVALIDARG;
        }
        *lock = nullptr;
        return AtBoundary([&] {
            const WICRect part =
                CheckCopyRequest(wanted, m_width, m_height, BytesOfFormat(m_format), m_stride, 0xFFFFFFFF);
            const bool writing = (flags & WICBitmapLockWrite) != 0;
            if (!Acquire(writing))
            {
                return WINCODEC_ERR_ALREADYLOCKED;
            }
            *lock = CBitmapLock::Make(ComPtr<CMemoryBitmap>(this), part, writing).Detach();
            return S_OK;
        });
    }

    STDMETHODIMP SetPalette(IWICPalette *) noexcept override { return WINCODEC_ERR_UNSUPPORTEDOPERATION; }

    STDMETHODIMP SetResolution(double x, double y) noexcept override
    {
        m_dpiX = x;
        m_dpiY = y;
        return S_OK;
    }

    BYTE *At(INT x, INT y) noexcept
    {
        return m_pixels.data() + size_t{m_stride} * static_cast<UINT>(y) +
               size_t{BytesOfFormat(m_format)} * static_cast<UINT>(x);
    }
    UINT Stride() const noexcept { return m_stride; }

    void Unlock(bool writing) noexcept
    {
        const std::lock_guard guard(m_mutex);
        writing ? m_writers-- : m_readers--;
    }

private:
    bool Acquire(bool writing)
    {
        const std::lock_guard guard(m_mutex);
        if (m_writers > 0 || (writing && m_readers > 0))
        {
            return false;
        }
        writing ? m_writers++ : m_readers++;
        return true;
    }

    UINT m_width;
    UINT m_height;
    WICPixelFormatGUID m_format;
    UINT m_stride;
    Bytes m_pixels;
    double m_dpiX = 0;
    double m_dpiY = 0;
    std::mutex m_mutex;
    int m_readers = 0;
    int m_writers = 0;
};

CBitmapLock::~CBitmapLock()
{
    m_bitmap->Unlock(m_writing);
}

HRESULT CBitmapLock::GetStride(UINT *stride) noexcept
{
    if (stride == nullptr)
    {
        return E_INVALIDARG;
    }
    *stride = m_bitmap->Stride();
    return S_OK;
}

HRESULT CBitmapLock::GetDataPointer(UINT *size, BYTE **data) noexcept
{
    if (size == nullptr || data == nullptr)
    {
        return E_INVALIDARG;
    }
    BYTE *first = m_bitmap->At(m_part.X, m_part.Y);
    *size = static_cast<UINT>(m_bitmap->At(m_part.X + m_part.Width, m_part.Y + m_part.Height - 1) - first);
    *data = first;
    return S_OK;
}

HRESULT CBitmapLock::GetPixelFormat(WICPixelFormatGUID *format) noexcept
{
    return m_bitmap->GetPixelFormat(format);
}
} // namespace

HRESULT CreateMemoryBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride, UINT size,
                           const BYTE *pixels, IWICBitmap **bitmap) noexcept
{
    if (bitmap == nullptr || pixels == nullptr || width == 0 || height == 0)
    {
        return E_INVALIDARG;
    }
    *bitmap = nullptr;
    return AtBoundary([&] {
        const UINT pixel = BytesOfFormat(format);
        if (pixel == 0)
        {
            return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        }
        if (width > 0x7FFFFFFF / pixel || height > 0x7FFFFFFF)
        {
            return E_INVALIDARG;
        }
        CheckCopyRequest(nullptr, width, height, pixel, stride, size);
        const size_t used = size_t{stride} * (height - 1) + size_t{pixel} * width;
        *bitmap = CMemoryBitmap::Make(width, height, format, stride, Bytes(pixels, pixels + used)).Detach();
        return S_OK;
    });
}
