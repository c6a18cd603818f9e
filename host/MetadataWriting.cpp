#include "host/MetadataWriting.h"

#include "host/ExifFieldValue.h"
#include "host/ImageTexts.h"
#include "host/IptcTexts.h"
#include "host/TextEncodings.h"

#include "com/Hresult.h"

#include <cstdio>

namespace
{
namespace Tag
{
constexpr WORD ImageDescription = 270;
constexpr WORD Orientation = 274;
constexpr WORD Artist = 315;
constexpr WORD Copyright = 33432;
constexpr WORD UserComment = 37510;
constexpr WORD ColorSpace = 40961;
constexpr WORD PixelXDimension = 40962;
constexpr WORD PixelYDimension = 40963;
} // namespace Tag

// Copies of other blocks, layers and directories of small pictures that lie in IFD0.
constexpr WORD CopiesInMain[] = {700, 33723, 34377, 37724};

// An EXIF block and an XMP packet have to fit into a segment of 64 KB each; longer texts stay out.
constexpr size_t LongestText = 8000;
constexpr size_t MostXmpText = 12000;

// More segments of a kind than any file has; ends the loop on a writer that always claims success.
constexpr int MostSegments = 10000;

WideText ExifPath(ExifField::Directory directory, WORD tag)
{
    static constexpr WideView Folders[] = {TEXT("/app1/ifd/"), TEXT("/app1/ifd/exif/"), TEXT("/app1/ifd/gps/")};
    const std::string number = std::to_string(tag);
    return WideText(Folders[static_cast<size_t>(directory)]) + TEXT("{ushort=") +
           WideText(number.begin(), number.end()) + TEXT("}");
}

std::vector<WideText> SplitArtists(WideView artists)
{
    return SplitKeywords(artists);
}

WideView ViewOf(BSTR text)
{
    return text != nullptr ? WideView(text, SysStringLen(text)) : WideView();
}

class RecordWriting
{
public:
    RecordWriting(IWICMetadataQueryWriter &writer, const ItemRecord &record, const WritingNotice &notice)
        : m_writer(writer), m_record(record), m_notice(notice)
    {
    }

    // Returns false if there was nothing to remove.
    bool Remove(const WideText &path)
    {
        const HRESULT result = m_writer.RemoveMetadataByName(path.c_str());
        if (result != WINCODEC_ERR_PROPERTYNOTFOUND)
        {
            ThrowIfFailed(result);
        }
        return SUCCEEDED(result);
    }

    void RemoveAll(const WideText &path)
    {
        for (int left = MostSegments; Remove(path); --left)
        {
            if (left == 0)
            {
                ThrowHresult(WINCODEC_ERR_UNEXPECTEDMETADATATYPE);
            }
        }
    }

    bool Holds(const WideText &path) { return m_writer.GetMetadataByName(path.c_str(), nullptr) == S_OK; }

    UINT16 CopiedOrientation()
    {
        PROPVARIANT value = {};
        const WideText path = ExifPath(ExifField::Directory::Main, Tag::Orientation);
        const HRESULT result = m_writer.GetMetadataByName(path.c_str(), &value);
        const UINT16 orientation = SUCCEEDED(result) && value.vt == VT_UI2 ? value.uiVal : UINT16{0};
        PropVariantClear(&value);
        return orientation >= 1 && orientation <= 8 ? orientation : OrientationOf(m_record);
    }

    void ClearCopies()
    {
        Remove(TEXT("/app1"));
        RemoveAll(TEXT("/com"));
        for (int number = 0; number <= 15; ++number)
        {
            const std::string digits = std::to_string(number);
            RemoveAll((number == 1 ? TEXT("/[1]app") : TEXT("/app")) + WideText(digits.begin(), digits.end()));
        }
    }

    void ClearClosedCopies()
    {
        Remove(TEXT("/app1/thumb"));
        for (const WORD tag : CopiesInMain)
        {
            Remove(ExifPath(ExifField::Directory::Main, tag));
        }
    }

    void Set(const WideText &path, const PROPVARIANT &value)
    {
        const HRESULT result = m_writer.SetMetadataByName(path.c_str(), &value);
        if (result == E_OUTOFMEMORY)
        {
            ThrowHresult(result);
        }
        if (FAILED(result))
        {
            char code[16];
            std::snprintf(code, sizeof(code), "0x%08x", static_cast<unsigned>(result));
            m_notice("The metadata " + Utf8FromText(path) + " can't be written (" + code + ").");
        }
    }

    void SetShort(ExifField::Directory directory, WORD tag, UINT16 number)
    {
        PROPVARIANT value = {};
        value.vt = VT_UI2;
        value.uiVal = number;
        Set(ExifPath(directory, tag), value);
    }

    void SetLong(ExifField::Directory directory, WORD tag, UINT32 number)
    {
        PROPVARIANT value = {};
        value.vt = VT_UI4;
        value.ulVal = number;
        Set(ExifPath(directory, tag), value);
    }

    void SetText(const WideText &path, WideView text)
    {
        if (text.empty() || text.size() > LongestText)
        {
            return;
        }
        WideText copy(text);
        PROPVARIANT value = {};
        value.vt = VT_LPWSTR;
        value.pwszVal = copy.data();
        Set(path, value);
    }

    void SetTexts(const WideText &path, std::vector<WideText> texts)
    {
        if (texts.empty())
        {
            return;
        }
        std::vector<WCHAR *> elements;
        for (WideText &text : texts)
        {
            elements.push_back(text.data());
        }
        PROPVARIANT value = {};
        value.vt = VT_VECTOR | VT_LPWSTR;
        value.calpwstr.cElems = static_cast<ULONG>(elements.size());
        value.calpwstr.pElems = elements.data();
        Set(path, value);
    }

    void SetExifText(ExifField::Directory directory, WORD tag, WideView text)
    {
        SetText(ExifPath(directory, tag), text);
    }

    void SetProperty(const WCHAR *name, WideView text)
    {
        if (TakeXmpRoom(text.size()))
        {
            SetText(WideText(TEXT("/xmp/")) + name, text);
        }
    }

    void SetProperties(const WCHAR *name, const std::vector<WideText> &texts)
    {
        size_t size = 0;
        for (const WideText &text : texts)
        {
            size += text.size() + 16;
        }
        if (TakeXmpRoom(size))
        {
            SetTexts(WideText(TEXT("/xmp/")) + name, texts);
        }
    }

    void SetDataset(const WCHAR *name, WideView text) { SetText(DatasetPath(name), text); }
    void SetDatasets(const WCHAR *name, std::vector<WideText> texts)
    {
        SetTexts(DatasetPath(name), std::move(texts));
    }

    void SetField(const ExifField &field)
    {
        const WideText path = ExifPath(field.directory, field.tag);
        const ExifFieldValue value(field);
        if (value.Get().vt != VT_EMPTY && !Holds(path))
        {
            Set(path, value.Get());
        }
    }

private:
    static WideText DatasetPath(const WCHAR *name)
    {
        return WideText(TEXT("/app13/irb/8bimiptc/iptc/{str=")) + name + TEXT("}");
    }

    bool TakeXmpRoom(size_t size)
    {
        if (size > MostXmpText - m_xmpText)
        {
            return false;
        }
        m_xmpText += size;
        return true;
    }

    IWICMetadataQueryWriter &m_writer;
    const ItemRecord &m_record;
    const WritingNotice &m_notice;
    size_t m_xmpText = 0;
};

void WriteCopyright(RecordWriting &writing, const ItemRecord &record)
{
    const WideView artist = ViewOf(record.CopyrightTexts[0]);
    const WideView copyright = ViewOf(record.CopyrightTexts[1]);
    const WideView credit = ViewOf(record.CopyrightTexts[2]);
    writing.SetExifText(ExifField::Directory::Main, Tag::Artist, artist);
    writing.SetExifText(ExifField::Directory::Main, Tag::Copyright, copyright);
    writing.SetExifText(ExifField::Directory::Exif, Tag::UserComment, ViewOf(record.ExifComment));
    writing.SetProperties(TEXT("dc:creator"), SplitArtists(artist));
    writing.SetProperty(TEXT("dc:rights"), copyright);
    writing.SetProperty(TEXT("photoshop:Credit"), credit);
    writing.SetDatasets(TEXT("By-line"), SplitArtists(artist));
    writing.SetDataset(TEXT("Copyright Notice"), copyright);
    writing.SetDataset(TEXT("Credit"), credit);
}

void WriteIptc(RecordWriting &writing, const ItemRecord &record)
{
    const WideView title = ViewOf(record.Iptc.Texts[IPTC_TEXT_CAPTION]);
    const WideView description = ViewOf(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION]);
    const std::vector<WideText> keywords = SplitKeywords(ViewOf(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]));
    writing.SetDataset(TEXT("Object Name"), title);
    writing.SetDataset(TEXT("Caption"), description);
    writing.SetDatasets(TEXT("Keywords"), keywords);
    writing.SetProperty(TEXT("dc:title"), title);
    writing.SetProperty(TEXT("dc:description"), description);
    writing.SetProperties(TEXT("<xmpbag>dc:subject"), keywords);
    writing.SetExifText(ExifField::Directory::Main, Tag::ImageDescription, description);
    for (const IptcTextPlace &place : IptcTextPlaces)
    {
        const WideView text = ViewOf(record.Iptc.Texts[place.number]);
        writing.SetProperty(place.property, text);
        if (place.dataset.name != nullptr)
        {
            writing.SetDataset(place.dataset.name, text);
        }
    }
}

void WriteXmp(RecordWriting &writing, const MetadataSnapshot &snapshot)
{
    const auto number = [&](const WCHAR *name, int value) {
        if (value != NoNumber)
        {
            const std::string digits = std::to_string(value);
            writing.SetProperty(name, WideText(digits.begin(), digits.end()));
        }
    };
    number(TEXT("xmp:Rating"), snapshot.rating);
    number(TEXT("photoshop:Urgency"), snapshot.urgency);
    writing.SetProperty(TEXT("xmp:Label"), snapshot.label);
}

void WriteExif(RecordWriting &writing, const MetadataSnapshot &snapshot, const ItemRecord &record, bool processed)
{
    using enum ExifField::Directory;
    if (processed)
    {
        writing.SetShort(Main, Tag::Orientation, 1);
        writing.SetShort(Exif, Tag::ColorSpace, 1); // sRGB
    }
    for (const ExifField &field : snapshot.camera)
    {
        writing.SetField(field);
    }
    writing.SetLong(Exif, Tag::PixelXDimension, record.Widths[0]);
    writing.SetLong(Exif, Tag::PixelYDimension, record.Heights[0]);
}
} // namespace

void WriteRecordMetadata(IWICMetadataQueryWriter &writer, const ItemRecord &record,
                         const MetadataSnapshots &snapshots, const GroupSwitches &switches, NewFrame frame,
                         const WritingNotice &notice)
{
    const auto group = [](bool wanted, RecordGroup found) { return wanted ? std::move(found) : RecordGroup(); };
    const RecordGroup exif = group(switches.exif, snapshots.Exif(record));
    const RecordGroup gps = group(switches.gps, snapshots.Gps(record));
    const RecordGroup xmp = group(switches.xmp, snapshots.Xmp(record));
    const bool copyright = switches.copyright && !IsCopyrightBlank(record);
    const bool iptc = switches.iptc && !IsIptcBlank(record);

    RecordWriting writing(writer, record, notice);
    UINT16 orientation = OrientationOf(record);
    if (frame == NewFrame::Copied)
    {
        orientation = writing.CopiedOrientation();
        writing.Remove(TEXT("/xmp"));
        writing.Remove(TEXT("/app13"));
        if (copyright && iptc && !exif.blank && !gps.blank && !xmp.blank)
        {
            writing.ClearClosedCopies();
        }
        else
        {
            writing.ClearCopies();
        }
    }
    if (frame != NewFrame::Processed && orientation != 1)
    {
        writing.SetShort(ExifField::Directory::Main, Tag::Orientation, orientation);
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
        WriteExif(writing, *exif.snapshot, record, frame == NewFrame::Processed);
    }
    if (gps.snapshot)
    {
        for (const ExifField &field : gps.snapshot->gps)
        {
            writing.SetField(field);
        }
    }
    if (xmp.snapshot)
    {
        WriteXmp(writing, *xmp.snapshot);
    }
    if (copyright)
    {
        WriteCopyright(writing, record);
    }
    if (iptc)
    {
        WriteIptc(writing, record);
    }
}
