// A colour context: a profile's bytes.
#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/Codecs.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <cstring>

namespace
{
class CColorContext final : public UncalledOfColorContext<ComObject<CColorContext, IWICColorContext>>
{
public:
    STDMETHODIMP InitializeFromMemory(const BYTE *data, UINT size) noexcept override
    {
        return AtBoundary([&] {
            if (data == nullptr || size == 0)
            {
                return E_INVALIDARG;
            }
            m_profile.assign(data, data + size);
            return S_OK;
        });
    }

    STDMETHODIMP GetType(WICColorContextType *type) noexcept override
    {
        if (type == nullptr)
        {
            return E_INVALIDARG;
        }
        *type = m_profile.empty() ? WICColorContextUninitialized : WICColorContextProfile;
        return S_OK;
    }

    STDMETHODIMP GetProfileBytes(UINT size, BYTE *buffer, UINT *actual) noexcept override
    {
        if (actual == nullptr)
        {
            return E_INVALIDARG;
        }
        *actual = static_cast<UINT>(m_profile.size());
        if (m_profile.empty())
        {
            return WINCODEC_ERR_NOTINITIALIZED;
        }
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

private:
    Bytes m_profile;
};
} // namespace

HRESULT CreateColorContext(IWICColorContext **context) noexcept
{
    return CColorContext::CreateInstance(nullptr, __uuidof(IWICColorContext), reinterpret_cast<void **>(context));
}
