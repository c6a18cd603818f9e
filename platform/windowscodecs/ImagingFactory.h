// The imaging component's factory: decoders on streams, the JPEG decoder and encoder, colour contexts
// and bitmaps in memory. Operations that the product doesn't call answer E_NOTIMPL.
#pragma once

#include "com/ComObject.h"

#include <wincodec.h>

class CImagingFactory final : public ComObject<CImagingFactory, IWICImagingFactory>
{
public:
    STDMETHODIMP CreateDecoderFromStream(IStream *stream, const GUID *vendor, WICDecodeOptions options,
                                         IWICBitmapDecoder **decoder) noexcept override;

    STDMETHODIMP CreateDecoderFromFilename(LPCWSTR, const GUID *, DWORD, WICDecodeOptions,
                                           IWICBitmapDecoder **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateDecoderFromFileHandle(ULONG_PTR, const GUID *, WICDecodeOptions,
                                             IWICBitmapDecoder **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateComponentInfo(REFCLSID, IWICComponentInfo **) noexcept override { return E_NOTIMPL; }
    // JPEG by no vendor or Microsoft; WINCODEC_ERR_COMPONENTNOTFOUND for everything else.
    STDMETHODIMP CreateDecoder(REFGUID container, const GUID *vendor,
                               IWICBitmapDecoder **decoder) noexcept override;
    STDMETHODIMP CreateEncoder(REFGUID container, const GUID *vendor,
                               IWICBitmapEncoder **encoder) noexcept override;
    STDMETHODIMP CreatePalette(IWICPalette **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFormatConverter(IWICFormatConverter **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapScaler(IWICBitmapScaler **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapClipper(IWICBitmapClipper **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapFlipRotator(IWICBitmapFlipRotator **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateStream(IWICStream **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateColorContext(IWICColorContext **context) noexcept override;
    STDMETHODIMP CreateColorTransformer(IWICColorTransform **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmap(UINT, UINT, REFWICPixelFormatGUID, WICBitmapCreateCacheOption,
                              IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSource(IWICBitmapSource *, WICBitmapCreateCacheOption,
                                        IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSourceRect(IWICBitmapSource *, UINT, UINT, UINT, UINT,
                                            IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromMemory(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride,
                                        UINT size, BYTE *pixels, IWICBitmap **bitmap) noexcept override;
    STDMETHODIMP CreateBitmapFromHBITMAP(HBITMAP, HPALETTE, WICBitmapAlphaChannelOption,
                                         IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromHICON(HICON, IWICBitmap **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateComponentEnumerator(DWORD, DWORD, IEnumUnknown **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFastMetadataEncoderFromDecoder(IWICBitmapDecoder *,
                                                      IWICFastMetadataEncoder **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateFastMetadataEncoderFromFrameDecode(IWICBitmapFrameDecode *,
                                                          IWICFastMetadataEncoder **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateQueryWriter(REFGUID, const GUID *, IWICMetadataQueryWriter **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateQueryWriterFromReader(IWICMetadataQueryReader *, const GUID *,
                                             IWICMetadataQueryWriter **) noexcept override
    {
        return E_NOTIMPL;
    }
};
