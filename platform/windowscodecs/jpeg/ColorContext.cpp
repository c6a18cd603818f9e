// A colour context: a profile's bytes, or the colour space that EXIF names.
#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/JpegCodec.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <cstring>

namespace
{
class CColorContext final : public ComObject<CColorContext, IWICColorContext>
{
public:
    STDMETHODIMP InitializeFromFilename(LPCWSTR) noexcept override { return WINCODEC_ERR_UNSUPPORTEDOPERATION; }

    STDMETHODIMP InitializeFromMemory(const BYTE *data, UINT size) noexcept override
    {
        return AtBoundary([&] {
            if (m_type == WICColorContextExifColorSpace)
            {
                return WINCODEC_ERR_WRONGSTATE;
            }
            if (data == nullptr || size == 0)
            {
                return E_INVALIDARG;
            }
            m_profile.assign(data, data + size);
            m_type = WICColorContextProfile;
            return S_OK;
        });
    }

    STDMETHODIMP InitializeFromExifColorSpace(UINT space) noexcept override
    {
        if (m_type == WICColorContextProfile)
        {
            return WINCODEC_ERR_WRONGSTATE;
        }
        m_exifSpace = space;
        m_type = WICColorContextExifColorSpace;
        return S_OK;
    }

    STDMETHODIMP GetType(WICColorContextType *type) noexcept override
    {
        if (type == nullptr)
        {
            return E_INVALIDARG;
        }
        *type = m_type;
        return S_OK;
    }

    STDMETHODIMP GetProfileBytes(UINT size, BYTE *buffer, UINT *actual) noexcept override
    {
        if (actual == nullptr)
        {
            return E_INVALIDARG;
        }
        *actual = 0;
        if (m_type != WICColorContextProfile)
        {
            return WINCODEC_ERR_NOTINITIALIZED;
        }
        *actual = static_cast<UINT>(m_profile.size());
        if (buffer == nullptr)
        {
            return S_OK;
        }
        if (size < *actual)
        {
            return WINCODEC_ERR_INSUFFICIENTBUFFER;
        }
        std::memcpy(buffer, m_profile.data(), m_profile.size());
        return S_OK;
    }

    STDMETHODIMP GetExifColorSpace(UINT *space) noexcept override
    {
        if (space == nullptr)
        {
            return E_INVALIDARG;
        }
        *space = m_exifSpace;
        return m_type == WICColorContextExifColorSpace ? S_OK : WINCODEC_ERR_NOTINITIALIZED;
    }

private:
    WICColorContextType m_type = WICColorContextUninitialized;
    Bytes m_profile;
    UINT m_exifSpace = 0;
};
} // namespace

HRESULT CreateColorContext(IWICColorContext **context) noexcept
{
    return CColorContext::CreateInstance(nullptr, __uuidof(IWICColorContext), reinterpret_cast<void **>(context));
}
