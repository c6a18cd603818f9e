#include "publish/ImagePreparation.h"

#include "com/Hresult.h"
#include "publish/ItemRecord.h"
#include "publish/JpegEncoder.h"
#include "publish/MetadataSelection.h"
#include "publish/RetryRule.h"

#include <objbase.h>
#include <shlwapi.h>
#include <wincodec.h>

#include <optional>

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

// The file's first frame, which keeps file and decoder alive. The file is opened shared with readers.
// The failure of any call is thrown: WINCODEC_ERR_BADHEADER for a file that is no JPEG.
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

// Gives target the profile of the JPEG at sourcePath, whose first frame is source. A decoder of another
// vendor is asked for the profile first, and source where that decoder isn't installed or fails. Without
// either the picture is uploaded without a profile: no failure here fails the picture.
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

// The same for all passes.
struct Preparation
{
    IHalvoraImageMetadata *Metadata;
    const WCHAR *SourcePath;
    const WCHAR *UploadName;
    const UploadOptions &Options;
    ComPtr<IWICImagingFactory> Factory;

    bool IsIntact() const noexcept { return Options.Mode == SendPixelsIntact; }
};

// The picture to write. Frame is the frame of the source file where its pixels are kept, and null for a
// processed picture.
struct Source
{
    ComPtr<IWICBitmapFrameDecode> Frame;
    ComPtr<IWICBitmapSource> Bitmap;
};

ComPtr<IWICImagingFactory> CreateImagingFactory()
{
    ComPtr<IWICImagingFactory> factory;
    ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_ALL, __uuidof(IWICImagingFactory),
                                   factory.PutVoid()));
    return factory;
}

Source OpenSource(const Preparation &preparation, ItemRecord *record)
{
    Source source;
    if (preparation.IsIntact())
    {
        source.Frame = OpenJpegFrame(preparation.Factory.Get(), preparation.SourcePath, GUID_VendorMicrosoft);
        source.Bitmap = source.Frame;
        ThrowIfFailed(preparation.Metadata->ReadImageMetadata(preparation.SourcePath, 0, 0, nullptr,
                                                              READ_METADATA_ONLY, record));
        return source;
    }
    const auto longEdge = static_cast<INT32>(preparation.Options.LongEdgePixels);
    ThrowIfFailed(preparation.Metadata->ReadImageMetadata(preparation.SourcePath, 0, longEdge, source.Bitmap.Put(),
                                                          READ_METADATA_AND_PICTURE, record));
    if (!source.Bitmap)
    {
        ThrowHresult(E_UNEXPECTED);
    }
    return source;
}

HRESULT TransferMetadata(const Preparation &preparation, const Source &source, IWICBitmapFrameEncode *frame,
                         ItemRecord *record, bool blocksDropped)
{
    if (!preparation.IsIntact())
    {
        return SelectProcessedMetadata(preparation.Metadata, frame, record, preparation.Options);
    }
    CopyColorProfile(preparation.Factory.Get(), preparation.SourcePath, source.Frame.Get(), frame);
    return SelectIntactMetadata(preparation.Metadata, source.Frame.Get(), frame, record, preparation.Options,
                                blocksDropped);
}

// The end of a pass: its picture, or its failure and the milliseconds to wait before another pass.
struct PassResult
{
    ComPtr<IStream> Picture;
    HRESULT Failure = S_OK;
    std::optional<DWORD> NextPass;
};

PassResult RunPass(const Preparation &preparation, RetryRule &rule, ItemTexts &texts)
{
    ItemRecordOwner record;
    const Source source = OpenSource(preparation, record.Get());
    texts = ChooseItemTexts(*record, preparation.UploadName);
    const JpegEncoder encoder = CreateJpegEncoder(preparation.Factory.Get(), preparation.Options);
    DescribeFrame(encoder.Frame.Get(), source.Bitmap.Get(), preparation.Options, *record.Get());

    const HRESULT transferred =
        TransferMetadata(preparation, source, encoder.Frame.Get(), record.Get(), rule.BlocksDropped);
    if (FAILED(transferred))
    {
        return {nullptr, transferred, rule.AfterMetadataFailure()};
    }
    const HRESULT written = encoder.Frame->WriteSource(source.Bitmap.Get(), nullptr);
    const std::optional<DWORD> nextPass = rule.AfterPixels(written);
    if (FAILED(written))
    {
        return {nullptr, written, nextPass};
    }
    ThrowIfFailed(encoder.Frame->Commit());
    ThrowIfFailed(encoder.Container->Commit());
    ThrowIfFailed(encoder.Picture->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
    return {encoder.Picture, S_OK, std::nullopt};
}
} // namespace

ComPtr<IStream> PrepareJpeg(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath, const WCHAR *uploadName,
                            const UploadOptions &options, const Pause &wait, ItemTexts &texts)
{
    const Preparation preparation{metadata, sourcePath, uploadName, options, CreateImagingFactory()};
    RetryRule rule(preparation.IsIntact());
    for (;;)
    {
        const PassResult pass = RunPass(preparation, rule, texts);
        if (pass.Picture)
        {
            return pass.Picture;
        }
        if (!pass.NextPass)
        {
            ThrowHresult(pass.Failure);
        }
        if (*pass.NextPass != 0)
        {
            wait(*pass.NextPass);
        }
    }
}
