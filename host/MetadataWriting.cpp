#include "host/MetadataWriting.h"

#include "host/CopiedBlocks.h"
#include "host/ExifFields.h"
#include "host/ImageTexts.h"
#include "host/IptcTexts.h"
#include "host/MetadataValues.h"

#include "com/TextConversion.h"

namespace
{
WideView ViewOf(BSTR text)
{
    return text != nullptr ? WideView(text, SysStringLen(text)) : WideView();
}

void WriteCopyright(MetadataValues &values, const ItemRecord &record)
{
    const WideView artist = ViewOf(record.CopyrightTexts[0]);
    const WideView copyright = ViewOf(record.CopyrightTexts[1]);
    const WideView credit = ViewOf(record.CopyrightTexts[2]);
    values.AddExifText(ExifField::Directory::Main, ExifTag::Artist, "artist", artist);
    values.AddExifText(ExifField::Directory::Main, ExifTag::Copyright, "copyright", copyright);
    values.AddExifText(ExifField::Directory::Exif, ExifTag::UserComment, "comment", ViewOf(record.ExifComment));
    const std::vector<WideText> artists = SplitKeywords(artist); // separated alike
    values.SetProperties(TEXT("dc:creator"), artists);
    values.SetProperty(TEXT("dc:rights"), copyright);
    values.SetProperty(TEXT("photoshop:Credit"), credit);
    values.SetDatasets(Dataset::Byline, artists);
    values.SetDataset(Dataset::Copyright, copyright);
    values.SetDataset(Dataset::Credit, credit);
}

void WriteIptc(MetadataValues &values, const ItemRecord &record)
{
    const WideView title = ViewOf(record.Iptc.Texts[IPTC_TEXT_CAPTION]);
    const WideView description = ViewOf(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION]);
    const std::vector<WideText> keywords = SplitKeywords(ViewOf(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]));
    values.SetDataset(Dataset::ObjectName, title);
    values.SetDataset(Dataset::Caption, description);
    values.SetDatasets(Dataset::Keywords, keywords);
    values.SetProperty(TEXT("dc:title"), title);
    values.SetProperty(TEXT("dc:description"), description);
    values.SetProperties(TEXT("<xmpbag>dc:subject"), keywords);
    values.AddExifText(ExifField::Directory::Main, ExifTag::ImageDescription, "description", description);
    for (const IptcTextPlace &place : IptcTextPlaces)
    {
        const WideView text = ViewOf(record.Iptc.Texts[place.number]);
        values.SetProperty(place.property, text);
        values.SetDataset(place.dataset, text);
    }
}

void WriteXmp(MetadataValues &values, const MetadataSnapshot &snapshot)
{
    const auto number = [&](const WCHAR *name, int value) {
        if (value != NoNumber)
        {
            values.SetProperty(name, FromUtf8(std::to_string(value)));
        }
    };
    number(TEXT("xmp:Rating"), snapshot.rating);
    number(TEXT("photoshop:Urgency"), snapshot.urgency);
    values.SetProperty(TEXT("xmp:Label"), snapshot.label);
}

void WriteExif(MetadataValues &values, const MetadataSnapshot &snapshot, const ItemRecord &record, bool processed)
{
    using enum ExifField::Directory;
    if (processed)
    {
        values.SetNumber(Main, ExifTag::Orientation, VT_UI2, 1);
        values.SetNumber(Exif, ExifTag::ColorSpace, VT_UI2, 1); // sRGB
    }
    for (const ExifField &field : snapshot.camera)
    {
        values.SetField(field);
    }
    values.SetNumber(Exif, ExifTag::PixelXDimension, VT_UI4, record.Widths[0]);
    values.SetNumber(Exif, ExifTag::PixelYDimension, VT_UI4, record.Heights[0]);
}
} // namespace

std::string WriteRecordMetadata(IWICMetadataQueryWriter &writer, const ItemRecord &record,
                                const MetadataSnapshots &snapshots, const GroupSwitches &switches, NewFrame frame,
                                const WritingNotice &notice)
{
    const auto group = [](bool wanted, RecordGroup found) { return wanted ? std::move(found) : RecordGroup(); };
    const RecordGroup exif = group(switches.exif, snapshots.Exif(record));
    const RecordGroup gps = group(switches.gps, snapshots.Gps(record));
    const RecordGroup xmp = group(switches.xmp, snapshots.Xmp(record));
    const bool copyright = switches.copyright && !IsCopyrightBlank(record);
    const bool iptc = switches.iptc && !IsIptcBlank(record);

    MetadataValues values(writer, notice);
    UINT16 orientation = OrientationOf(record);
    if (frame == NewFrame::Copied)
    {
        CopiedBlocks blocks(writer);
        const UINT16 copied = blocks.Orientation();
        orientation = copied != 0 ? copied : orientation;
        if (copyright && iptc && !exif.blank && !gps.blank && !xmp.blank)
        {
            blocks.RemoveClosed();
            values.FitCopies(record.Widths[0]);
        }
        else
        {
            blocks.RemoveAll();
        }
    }
    if (frame != NewFrame::Processed && orientation != 1)
    {
        values.SetNumber(ExifField::Directory::Main, ExifTag::Orientation, VT_UI2, orientation);
    }
    if (frame != NewFrame::Processed && IsAdobeRgb(record))
    {
        values.SetAdobeRgb();
    }
    for (const RecordGroup *each : {&exif, &gps, &xmp})
    {
        if (!each->blank && !each->snapshot)
        {
            notice("What was read of this picture's metadata is no longer known; groups of it stay out.");
            break;
        }
    }
    if (exif.snapshot)
    {
        WriteExif(values, *exif.snapshot, record, frame == NewFrame::Processed);
    }
    if (gps.snapshot)
    {
        for (const ExifField &field : gps.snapshot->gps)
        {
            values.SetField(field);
        }
    }
    if (xmp.snapshot)
    {
        WriteXmp(values, *xmp.snapshot);
    }
    if (copyright)
    {
        WriteCopyright(values, record);
    }
    if (iptc)
    {
        WriteIptc(values, record);
    }
    values.WriteExifTexts();
    return values.LeftOut();
}
