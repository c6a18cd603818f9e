#include "host/ImageMetadata.h"

#include "com/WholeFile.h"
#include "host/Apartment.h"
#include "host/ImagingTrial.h"

#include "com/ComPtr.h"
#include "com/Hresult.h"

#include <wincodec.h>

HRESULT ReadMetadata(const std::filesystem::path &file, ImageTexts &texts, MetadataSnapshot *groups) noexcept
{
    texts = ImageTexts();
    if (groups != nullptr)
    {
        *groups = MetadataSnapshot();
    }
    return AtBoundary([&] {
        if (const std::error_code fault = TryToRead(file))
        {
            return HRESULT_FROM_WIN32(static_cast<DWORD>(fault.value()));
        }
        const Apartment apartment;
        ComPtr<IWICImagingFactory> factory;
        ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                       __uuidof(IWICImagingFactory), factory.PutVoid()));
        ComPtr<IWICBitmapDecoder> decoder;
        ComPtr<IWICBitmapFrameDecode> frame;
        HRESULT result = factory->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ,
                                                            WICDecodeMetadataCacheOnDemand, decoder.Put());
        if (result == WINCODEC_ERR_COMPONENTNOTFOUND)
        {
            return WINCODEC_ERR_UNKNOWNIMAGEFORMAT;
        }
        if (SUCCEEDED(result))
        {
            result = decoder->GetFrame(0, frame.Put());
        }
        if (FAILED(result))
        {
            return result == E_OUTOFMEMORY ? result : WINCODEC_ERR_BADMETADATAHEADER;
        }
        ComPtr<IWICMetadataQueryReader> reader;
        // A kind of file without metadata is no failure, nor a system that reads none.
        if (SUCCEEDED(frame->GetMetadataQueryReader(reader.Put())))
        {
            ReadFrameMetadata(*reader.Get(), texts, groups);
        }
        return S_OK;
    });
}

bool CanReadMetadata() noexcept
{
    const Apartment apartment;
    return TryReadingMetadata();
}
