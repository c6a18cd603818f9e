#include "publish/ImagePreparation.h"

#include "com/Hresult.h"
#include "publish/ItemRecord.h"
#include "publish/JpegEncoder.h"
#include "publish/JpegSource.h"
#include "publish/MetadataSelection.h"
#include "publish/RetryRule.h"

#include <objbase.h>
#include <wincodec.h>

#include <optional>

namespace
{
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
