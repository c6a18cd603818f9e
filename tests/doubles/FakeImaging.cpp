#include "tests/doubles/FakeImaging.h"

#include <windows.h>
#include <wincodec.h>

#include <string_view>

namespace
{
const GUID *FormatOf(std::string_view head)
{
    if (head.starts_with("\xFF\xD8"))
    {
        return &GUID_ContainerFormatJpeg;
    }
    if (head.starts_with("GIF8"))
    {
        return &GUID_ContainerFormatGif;
    }
    if (head.starts_with("\x89PNG"))
    {
        return &GUID_ContainerFormatPng;
    }
    return head.starts_with("BM") ? &GUID_ContainerFormatBmp : nullptr;
}

class Decoder final : public ComObject<Decoder, IWICBitmapDecoder>
{
public:
    Decoder(const GUID &format, HRESULT result) : m_format(format), m_result(result) {}

    STDMETHODIMP GetContainerFormat(GUID *format) override
    {
        *format = m_format;
        return m_result;
    }
    STDMETHODIMP QueryCapability(IStream *, DWORD *) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(IStream *, WICDecodeOptions) override { return E_NOTIMPL; }
    STDMETHODIMP GetDecoderInfo(IWICBitmapDecoderInfo **) override { return E_NOTIMPL; }
    STDMETHODIMP CopyPalette(IWICPalette *) override { return E_NOTIMPL; }
    STDMETHODIMP GetMetadataQueryReader(IWICMetadataQueryReader **) override { return E_NOTIMPL; }
    STDMETHODIMP GetPreview(IWICBitmapSource **) override { return E_NOTIMPL; }
    STDMETHODIMP GetColorContexts(UINT, IWICColorContext **, UINT *) override { return E_NOTIMPL; }
    STDMETHODIMP GetThumbnail(IWICBitmapSource **) override { return E_NOTIMPL; }
    STDMETHODIMP GetFrameCount(UINT *) override { return E_NOTIMPL; }
    STDMETHODIMP GetFrame(UINT, IWICBitmapFrameDecode **) override { return E_NOTIMPL; }

private:
    GUID m_format;
    HRESULT m_result;
};

using Format = REFWICPixelFormatGUID;

class Factory final : public ComObject<Factory, IWICImagingFactory>
{
public:
    explicit Factory(FakeImaging &imaging) : m_imaging(imaging) {}

    STDMETHODIMP CreateDecoderFromStream(IStream *stream, const GUID *vendor, WICDecodeOptions options,
                                         IWICBitmapDecoder **decoder) override
    {
        *decoder = nullptr;
        char head[4] = {};
        ULONG read = 0;
        stream->Read(head, sizeof head, &read);
        const GUID *format = FormatOf({head, read});
        if (vendor != nullptr || options != WICDecodeMetadataCacheOnDemand || format == nullptr)
        {
            return WINCODEC_ERR_COMPONENTNOTFOUND;
        }
        *decoder = Decoder::Make(*format, m_imaging.FormatResult).Detach();
        return S_OK;
    }
    STDMETHODIMP CreateDecoderFromFilename(LPCWSTR, const GUID *, DWORD, WICDecodeOptions,
                                           IWICBitmapDecoder **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateDecoderFromFileHandle(ULONG_PTR, const GUID *, WICDecodeOptions,
                                             IWICBitmapDecoder **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateComponentInfo(REFCLSID, IWICComponentInfo **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateDecoder(REFGUID, const GUID *, IWICBitmapDecoder **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateEncoder(REFGUID, const GUID *, IWICBitmapEncoder **) override { return E_NOTIMPL; }
    STDMETHODIMP CreatePalette(IWICPalette **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateFormatConverter(IWICFormatConverter **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapScaler(IWICBitmapScaler **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapClipper(IWICBitmapClipper **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapFlipRotator(IWICBitmapFlipRotator **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateStream(IWICStream **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateColorContext(IWICColorContext **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateColorTransformer(IWICColorTransform **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmap(UINT, UINT, Format, WICBitmapCreateCacheOption, IWICBitmap **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSource(IWICBitmapSource *, WICBitmapCreateCacheOption, IWICBitmap **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSourceRect(IWICBitmapSource *, UINT, UINT, UINT, UINT, IWICBitmap **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromMemory(UINT, UINT, Format, UINT, UINT, BYTE *, IWICBitmap **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromHBITMAP(HBITMAP, HPALETTE, WICBitmapAlphaChannelOption, IWICBitmap **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromHICON(HICON, IWICBitmap **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateComponentEnumerator(DWORD, DWORD, IEnumUnknown **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateFastMetadataEncoderFromDecoder(IWICBitmapDecoder *, IWICFastMetadataEncoder **) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateFastMetadataEncoderFromFrameDecode(IWICBitmapFrameDecode *,
                                                          IWICFastMetadataEncoder **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateQueryWriter(REFGUID, const GUID *, IWICMetadataQueryWriter **) override { return E_NOTIMPL; }
    STDMETHODIMP CreateQueryWriterFromReader(IWICMetadataQueryReader *, const GUID *,
                                             IWICMetadataQueryWriter **) override { return E_NOTIMPL; }

private:
    FakeImaging &m_imaging;
};
} // namespace

FakeImaging::FakeImaging()
    : m_factory(CLSID_WICImagingFactory, [this](REFIID iid, void **object) {
          return FAILED(CreationResult) ? CreationResult : Factory::CreateInstance(nullptr, iid, object, *this);
      })
{
}
