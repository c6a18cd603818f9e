#include "publish/JpegSource.h"

#include "com/Hresult.h"

#include <shlwapi.h>

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
