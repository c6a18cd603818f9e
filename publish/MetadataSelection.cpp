#include "publish/MetadataSelection.h"

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "core/FormatText.h"
#include "com/Hresult.h"
#include "publish/ItemRecord.h"

#include <wincodecsdk.h>

#include <cstring>
#include <utility>

namespace
{
// EXIF 2.3, 4.6.5: CustomRendered, and its value for a custom process.
constexpr UINT TagCustomRendered = 41985;
constexpr USHORT CustomProcess = 1;

void FreeText(BSTR &text) noexcept
{
    BstrOwner::Adopt(std::exchange(text, nullptr));
}

void CopyBlocks(IWICBitmapFrameDecode *source, IWICBitmapFrameEncode *target)
{
    const auto reader = QueryFor<IWICMetadataBlockReader>(source);
    if (!reader)
    {
        return;
    }
    ComPtr<IWICMetadataBlockWriter> writer;
    ThrowIfFailed(target->QueryInterface(__uuidof(IWICMetadataBlockWriter), writer.PutVoid()));
    // A block that can't be copied doesn't fail the picture.
    writer->InitializeFromBlockReader(reader.Get());
}

ComPtr<IWICMetadataQueryWriter> QueryWriter(IWICBitmapFrameEncode *target)
{
    ComPtr<IWICMetadataQueryWriter> writer;
    ThrowIfFailed(target->GetMetadataQueryWriter(writer.Put()));
    return writer;
}

void MarkAsProcessed(IWICMetadataQueryWriter *writer)
{
    const WideText name = FormatText(TEXT("/app1/ifd/exif/{ushort=%d}"), TagCustomRendered);
    PROPVARIANT value{};
    value.vt = VT_UI2;
    value.uiVal = CustomProcess;
    writer->SetMetadataByName(name.c_str(), &value);
}
} // namespace

bool WantAnyMetadata(const UploadOptions &options) noexcept
{
    return options.WriteCopyright || options.WriteEXIF || options.WriteXMP || options.WriteGPS ||
           options.WriteIPTC;
}

void BlankDeselectedGroups(ItemRecord &record, const UploadOptions &options) noexcept
{
    if (!options.WriteCopyright)
    {
        FreeText(record.ExifComment);
        for (BSTR &text : record.CopyrightTexts)
        {
            FreeText(text);
        }
    }
    if (!options.WriteEXIF)
    {
        record.ExifGroup = 0;
    }
    if (!options.WriteXMP)
    {
        std::memset(record.XmpGroup, 0xFF, sizeof record.XmpGroup);
    }
    if (!options.WriteGPS)
    {
        record.GpsGroup = 0;
    }
    if (!options.WriteIPTC)
    {
        ReleaseIptcBlock(record.Iptc);
        // The host's mark of a group that is there and blank.
        record.Iptc.Word10 = 1;
    }
}

HRESULT SelectIntactMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameDecode *source,
                             IWICBitmapFrameEncode *target, ItemRecord *record, const UploadOptions &options,
                             bool blocksDropped)
{
    if (!blocksDropped)
    {
        CopyBlocks(source, target);
    }
    const auto writer = QueryWriter(target);
    // XMP and IPTC get into the new file only as the host writes them from the record. A failure says that the
    // source had none.
    writer->RemoveMetadataByName(TEXT("/xmp"));
    writer->RemoveMetadataByName(TEXT("/app13"));
    BlankDeselectedGroups(*record, options);
    const HRESULT written = metadata->WriteImageMetadata(writer.Get(), 0, 1, record, TRUE, TRUE, TRUE, TRUE, TRUE,
                                                         WantAnyMetadata(options), FALSE);
    ReleaseItemRecord(record);
    return written;
}

HRESULT SelectProcessedMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameEncode *target, ItemRecord *record,
                                const UploadOptions &options)
{
    const auto writer = QueryWriter(target);
    const bool any = WantAnyMetadata(options);
    const HRESULT written =
        metadata->WriteImageMetadata(writer.Get(), 0, 1, record, options.WriteCopyright, options.WriteEXIF,
                                     options.WriteXMP, options.WriteGPS, options.WriteIPTC, any, TRUE);
    if (any && SUCCEEDED(written))
    {
        MarkAsProcessed(writer.Get());
    }
    ReleaseItemRecord(record);
    return written;
}
