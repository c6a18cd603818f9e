#include "publish/PictureFile.h"

#include "com/Hresult.h"

#include <windows.h>
#include <shlwapi.h>
#include <wincodec.h>

#include <algorithm>
#include <iterator>

namespace
{
// The containers that are uploaded without conversion.
const GUID *const AcceptedFormats[] = {&GUID_ContainerFormatJpeg, &GUID_ContainerFormatGif,
                                       &GUID_ContainerFormatPng};

void VerifyContainer(IStream *stream)
{
    ComPtr<IWICImagingFactory> factory;
    ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_ALL, __uuidof(IWICImagingFactory),
                                   factory.PutVoid()));
    ComPtr<IWICBitmapDecoder> decoder;
    ThrowIfFailed(
        factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnDemand, decoder.Put()));
    GUID format{};
    ThrowIfFailed(decoder->GetContainerFormat(&format));
    if (std::none_of(std::begin(AcceptedFormats), std::end(AcceptedFormats),
                     [&](const GUID *accepted) { return *accepted == format; }))
    {
        ThrowHresult(WINCODEC_ERR_BADHEADER);
    }
}
} // namespace

ComPtr<IStream> OpenPictureFile(const WCHAR *path, bool verifyContainer)
{
    ComPtr<IStream> stream;
    ThrowIfFailed(SHCreateStreamOnFileW(path, STGM_READ | STGM_SHARE_DENY_WRITE, stream.Put()));
    if (verifyContainer)
    {
        VerifyContainer(stream.Get());
        ThrowIfFailed(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
    }
    return stream;
}
