#include "tests/doubles/FakeImaging.h"

#include "platform/windowscodecs/UncalledMethods.h"

#include <windows.h>
#include <wincodec.h>

namespace
{
constexpr GUID OtherVendor = {0xA6D092A4, 0x081A, 0x4F0E, {0x93, 0x56, 0xDA, 0x16, 0x7E, 0x87, 0xD9, 0x22}};

// "jpeg Microsoft", "jpeg other", and "?" for what else is asked for.
std::string NameOf(REFGUID format, const GUID *vendor)
{
    const bool isJpeg = format == GUID_ContainerFormatJpeg;
    const bool isKnown = vendor != nullptr && (*vendor == GUID_VendorMicrosoft || *vendor == OtherVendor);
    return std::string(isJpeg ? "jpeg " : "? ") + (!isKnown                 ? "?"
                                                   : *vendor == OtherVendor ? "other"
                                                                            : "Microsoft");
}

class ColorContext final : public UncalledOfColorContext<ComObject<ColorContext, IWICColorContext>>
{
public:
    STDMETHODIMP InitializeFromMemory(const BYTE *, UINT) override { return E_NOTIMPL; }
    STDMETHODIMP GetType(WICColorContextType *) override { return E_NOTIMPL; }
    STDMETHODIMP GetProfileBytes(UINT, BYTE *, UINT *) override { return E_NOTIMPL; }
};

using Format = REFWICPixelFormatGUID;

class Factory final : public UncalledOfFactory<ComObject<Factory, IWICImagingFactory>>
{
public:
    explicit Factory(FakeImaging &imaging) : m_imaging(imaging) {}

    STDMETHODIMP CreateDecoderFromStream(IStream *stream, const GUID *vendor, WICDecodeOptions options,
                                         IWICBitmapDecoder **decoder) override
    {
        *decoder = nullptr;
        const HRESULT result = m_imaging.Calls.Enter("CreateDecoderFromStream");
        const GUID *format = ContainerOf(stream);
        if (FAILED(result) || vendor != nullptr || options != WICDecodeMetadataCacheOnDemand || format == nullptr)
        {
            return FAILED(result) ? result : WINCODEC_ERR_COMPONENTNOTFOUND;
        }
        *decoder = MakeFakeDecoder(m_imaging, "", *format).Detach();
        return S_OK;
    }
    STDMETHODIMP CreateDecoder(REFGUID format, const GUID *vendor, IWICBitmapDecoder **decoder) override
    {
        *decoder = nullptr;
        const HRESULT result = m_imaging.Calls.Enter("CreateDecoder", {NameOf(format, vendor)});
        if (SUCCEEDED(result))
        {
            const char *const prefix = vendor && *vendor == OtherVendor ? "Other " : "";
            *decoder = MakeFakeDecoder(m_imaging, prefix, GUID_ContainerFormatJpeg).Detach();
        }
        return result;
    }
    STDMETHODIMP CreateEncoder(REFGUID format, const GUID *vendor, IWICBitmapEncoder **encoder) override
    {
        *encoder = nullptr;
        const HRESULT result = m_imaging.Calls.Enter("CreateEncoder", {NameOf(format, vendor)});
        if (SUCCEEDED(result))
        {
            *encoder = MakeFakeEncoder(m_imaging).Detach();
        }
        return result;
    }
    STDMETHODIMP CreateColorContext(IWICColorContext **context) override
    {
        *context = nullptr;
        const HRESULT result = m_imaging.Calls.Enter("CreateColorContext");
        if (SUCCEEDED(result))
        {
            *context = ColorContext::Make().Detach();
        }
        return result;
    }

private:
    FakeImaging &m_imaging;
};
} // namespace

FakeImaging::FakeImaging()
    : m_factory(CLSID_WICImagingFactory, [this](REFIID iid, void **object) {
          const HRESULT result = Calls.Enter("CreateFactory");
          return FAILED(result) ? result : Factory::CreateInstance(nullptr, iid, object, *this);
      })
{
}
