// The methods of the imaging interfaces that the product doesn't call; each answers E_NOTIMPL. An object takes them
// in front of its ComObject:
//
//     class CImagingFactory final : public UncalledOfFactory<ComObject<CImagingFactory, IWICImagingFactory>>
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <wincodec.h>
#include <wincodecsdk.h>

template <class Object>
class UncalledOfFactory : public Object
{
public:
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
    STDMETHODIMP CreatePalette(IWICPalette **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFormatConverter(IWICFormatConverter **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapScaler(IWICBitmapScaler **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapClipper(IWICBitmapClipper **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateBitmapFlipRotator(IWICBitmapFlipRotator **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateStream(IWICStream **) noexcept override { return E_NOTIMPL; }
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
    STDMETHODIMP CreateBitmapFromMemory(UINT, UINT, REFWICPixelFormatGUID, UINT, UINT, BYTE *,
                                        IWICBitmap **) noexcept override
    {
        return E_NOTIMPL;
    }
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

template <class Object>
class UncalledOfDecoder : public Object
{
public:
    STDMETHODIMP QueryCapability(IStream *, DWORD *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDecoderInfo(IWICBitmapDecoderInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CopyPalette(IWICPalette *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetMetadataQueryReader(IWICMetadataQueryReader **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPreview(IWICBitmapSource **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetColorContexts(UINT, IWICColorContext **, UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetThumbnail(IWICBitmapSource **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFrameCount(UINT *) noexcept override { return E_NOTIMPL; }
};

// A frame's pixels go over as they are coded, so nobody asks for them one by one.
template <class Object>
class UncalledOfFrameDecode : public Object
{
public:
    STDMETHODIMP GetPixelFormat(WICPixelFormatGUID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CopyPalette(IWICPalette *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CopyPixels(const WICRect *, UINT, UINT, BYTE *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetThumbnail(IWICBitmapSource **) noexcept override { return E_NOTIMPL; }
};

template <class Object>
class UncalledOfBlockReader : public Object
{
public:
    STDMETHODIMP GetContainerFormat(GUID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetCount(UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetReaderByIndex(UINT, IWICMetadataReader **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetEnumerator(IEnumUnknown **) noexcept override { return E_NOTIMPL; }
};

// Blocks are changed by queries, not one by one.
template <class Object>
class UncalledOfBlockWriter : public UncalledOfBlockReader<Object>
{
public:
    STDMETHODIMP GetWriterByIndex(UINT, IWICMetadataWriter **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AddWriter(IWICMetadataWriter *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetWriterByIndex(UINT, IWICMetadataWriter *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RemoveWriterByIndex(UINT) noexcept override { return E_NOTIMPL; }
};

// A JPEG file keeps profile and metadata with its frame.
template <class Object>
class UncalledOfEncoder : public Object
{
public:
    STDMETHODIMP GetContainerFormat(GUID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetEncoderInfo(IWICBitmapEncoderInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetColorContexts(UINT, IWICColorContext **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPalette(IWICPalette *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetThumbnail(IWICBitmapSource *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPreview(IWICBitmapSource *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetMetadataQueryWriter(IWICMetadataQueryWriter **) noexcept override { return E_NOTIMPL; }
};

template <class Object>
class UncalledOfFrameEncode : public Object
{
public:
    STDMETHODIMP SetPalette(IWICPalette *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetThumbnail(IWICBitmapSource *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP WritePixels(UINT, UINT, UINT, BYTE *) noexcept override { return E_NOTIMPL; }
};

template <class Object>
class UncalledOfMetadataQueries : public Object
{
public:
    STDMETHODIMP GetContainerFormat(GUID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetLocation(UINT, WCHAR *, UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetEnumerator(IEnumString **) noexcept override { return E_NOTIMPL; }
};

template <class Object>
class UncalledOfColorContext : public Object
{
public:
    STDMETHODIMP InitializeFromFilename(LPCWSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP InitializeFromExifColorSpace(UINT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetExifColorSpace(UINT *) noexcept override { return E_NOTIMPL; }
};

template <class Object>
class UncalledOfPropertyBag : public Object
{
public:
    STDMETHODIMP CountProperties(ULONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPropertyInfo(ULONG, ULONG, PROPBAG2 *, ULONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP LoadObject(LPCOLESTR, DWORD, IUnknown *, IErrorLog *) noexcept override { return E_NOTIMPL; }
};
