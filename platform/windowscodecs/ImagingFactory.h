// The imaging component's factory. It opens decoders on streams; everything else answers E_NOTIMPL
// until pictures are decoded here.
#pragma once

#include "core/ComObject.h"

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
    STDMETHODIMP CreateDecoder(REFGUID, const GUID *, IWICBitmapDecoder **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateEncoder(REFGUID, const GUID *, IWICBitmapEncoder **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreatePalette(IWICPalette **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFormatConverter(IWICFormatConverter **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapScaler(IWICBitmapScaler **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapClipper(IWICBitmapClipper **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapFlipRotator(IWICBitmapFlipRotator **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateStream(IWICStream **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateColorContext(IWICColorContext **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateColorTransformer(IWICColorTransform **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmap(UINT, UINT, REFWICPixelFormatGUID, WICBitmapCreateCacheOption,
                              IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSource(IWICBitmapSource *, WICBitmapCreateCacheOption, IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromSourceRect(IWICBitmapSource *, UINT, UINT, UINT, UINT, IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromMemory(UINT, UINT, REFWICPixelFormatGUID, UINT, UINT, BYTE *,
                                        IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromHBITMAP(HBITMAP, HPALETTE, WICBitmapAlphaChannelOption, IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateBitmapFromHICON(HICON, IWICBitmap **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateComponentEnumerator(DWORD, DWORD, IEnumUnknown **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFastMetadataEncoderFromDecoder(IWICBitmapDecoder *, IWICFastMetadataEncoder **) noexcept override
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
