#include "publish/JpegSource.h"

#include "com/Hresult.h"

#include <shlwapi.h>

namespace
{
// {A6D092A4-081A-4F0E-9356-DA167E87D922}, a vendor of JPEG decoders of whom nothing else is known.
constexpr GUID ProfileDecoderVendor = {
    0xA6D092A4, 0x081A, 0x4F0E, {0x93, 0x56, 0xDA, 0x16, 0x7E, 0x87, 0xD9, 0x22}};

// Copies the first profile of source. A frame without a profile is a success.
HRESULT PassProfileOn(IWICBitmapFrameDecode *source, IWICColorContext *profile, IWICBitmapFrameEncode *target)
{
    UINT count = 0;
    const HRESULT asked = source->GetColorContexts(1, &profile, &count);
    if (FAILED(asked) || count == 0)
    {
        return asked;
    }
    // count may be above 1: it counts all profiles of the frame, also those that didn't fit.
    return target->SetColorContexts(1, &profile);
}
} // namespace

ComPtr<IWICBitmapFrameDecode> OpenJpegFrame(IWICImagingFactory *factory, const WCHAR *path,
                                            const GUID &decoderVendor)
{
    ComPtr<IStream> file;
    ThrowIfFailed(SHCreateStreamOnFileW(path, STGM_READ | STGM_SHARE_DENY_WRITE, file.Put()));
    ComPtr<IWICBitmapDecoder> decoder;
    ThrowIfFailed(factory->CreateDecoder(GUID_ContainerFormatJpeg, &decoderVendor, decoder.Put()));
    ThrowIfFailed(decoder->Initialize(file.Get(), WICDecodeMetadataCacheOnDemand));
    ComPtr<IWICBitmapFrameDecode> frame;
    ThrowIfFailed(decoder->GetFrame(0, frame.Put()));
    return frame;
}

void CopyColorProfile(IWICImagingFactory *factory, const WCHAR *sourcePath, IWICBitmapFrameDecode *source,
                      IWICBitmapFrameEncode *target) noexcept
{
    ComPtr<IWICColorContext> profile;
    if (FAILED(factory->CreateColorContext(profile.Put())))
    {
        return;
    }
    const HRESULT result = AtBoundary([&] {
        const auto frame = OpenJpegFrame(factory, sourcePath, ProfileDecoderVendor);
        return PassProfileOn(frame.Get(), profile.Get(), target);
    });
    if (FAILED(result))
    {
        PassProfileOn(source, profile.Get(), target);
    }
}
