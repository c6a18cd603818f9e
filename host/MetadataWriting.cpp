#include "host/MetadataWriting.h"

#include "host/CopiedBlocks.h"
#include "host/DcfColours.h"
#include "host/ExifFieldValue.h"
#include "host/ImageTexts.h"
#include "host/IptcTexts.h"
#include "host/TextEncodings.h"

#include "com/Hresult.h"

#include <algorithm>
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

// An EXIF block and an XMP packet have to fit into a segment of 64 KB each; longer texts stay out. The imaging
// component tells when an EXIF block is full, but not of XMP before the pixels are written.
constexpr size_t LongestText = 8000;
constexpr size_t MostXmpText = 12000;

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
    RecordWriting(IWICMetadataQueryWriter &writer, const WritingNotice &notice)
        : m_writer(writer), m_notice(notice)
    {
    }

    bool Holds(const WideText &path) { return m_writer.GetMetadataByName(path.c_str(), nullptr) == S_OK; }

    // The new picture's own size has to fit in, or the copied block doesn't stay.
    void FitCopies(UINT32 width)
    {
        const WideText path = ExifPath(ExifField::Directory::Exif, Tag::PixelXDimension);
        PROPVARIANT value = {};
        value.vt = VT_UI4;
        value.ulVal = width;
        const auto fits = [&] {
            return m_writer.SetMetadataByName(path.c_str(), &value) != WINCODEC_ERR_TOOMUCHMETADATA;
        };
        m_maySpareMakerNote = true;
        if (!fits() && !(SpareMakerNote() && fits()))
        {
            CopiedBlocks(m_writer).RemoveExif();
            LeaveOut("what else the camera's EXIF block held");
        }
    }

    void Set(const WideText &path, const PROPVARIANT &value, const std::string &words)
    {
        HRESULT result = m_writer.SetMetadataByName(path.c_str(), &value);
        if (result == WINCODEC_ERR_TOOMUCHMETADATA && SpareMakerNote())
        {
            result = m_writer.SetMetadataByName(path.c_str(), &value);
        }
        if (result == WINCODEC_ERR_TOOMUCHMETADATA)
        {
            LeaveOut(words);
            return;
        }
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
        Set(ExifPath(directory, tag), value, FieldWords(tag));
    }

    void SetLong(ExifField::Directory directory, WORD tag, UINT32 number)
    {
        PROPVARIANT value = {};
        value.vt = VT_UI4;
        value.ulVal = number;
        Set(ExifPath(directory, tag), value, FieldWords(tag));
    }

    void SetAdobeRgb()
    {
        if (!Holds(ExifPath(ExifField::Directory::Exif, Tag::ColorSpace)))
        {
            SetShort(ExifField::Directory::Exif, Tag::ColorSpace, UncalibratedColorSpace);
        }
        std::string index(AdobeRgbIndex);
        PROPVARIANT value = {};
        value.vt = VT_LPSTR;
        value.pszVal = index.data();
        Set(TEXT("/app1/ifd/exif/interop/{ushort=1}"), value, "EXIF interoperability index");
    }

    // Written by WriteExifTexts, for which words say what it is.
    void AddExifText(ExifField::Directory directory, WORD tag, const char *words, WideView text)
    {
        m_exifTexts.push_back({ExifPath(directory, tag), std::string("EXIF ") + words, text});
    }

    // To be called when everything else is written: where there isn't room for all, the longest stay out.
    void WriteExifTexts()
    {
        std::stable_sort(m_exifTexts.begin(), m_exifTexts.end(),
                         [](const ExifText &a, const ExifText &b) { return a.text.size() < b.text.size(); });
        for (const ExifText &each : m_exifTexts)
        {
            SetText(each.path, each.text, each.words);
        }
    }

    void SetProperty(const WCHAR *name, WideView text)
    {
        const std::string words = "XMP " + Utf8FromText(name);
        if (TakeXmpRoom(text.size(), words))
        {
            SetText(WideText(TEXT("/xmp/")) + name, text, words);
        }
    }

    // name may begin with the kind of its list, "<xmpbag>".
    void SetProperties(WideView name, const std::vector<WideText> &texts)
    {
        size_t size = 0;
        for (const WideText &text : texts)
        {
            size += text.size() + 16;
        }
        const std::string words = "XMP " + Utf8FromText(name.substr(name.find('>') + 1));
        if (TakeXmpRoom(size, words))
        {
            SetTexts(WideText(TEXT("/xmp/")).append(name), texts, words);
        }
    }

    void SetDataset(const WCHAR *name, WideView text) { SetText(DatasetPath(name), text, DatasetWords(name)); }
    void SetDatasets(const WCHAR *name, std::vector<WideText> texts)
    {
        SetTexts(DatasetPath(name), std::move(texts), DatasetWords(name));
    }

    void SetField(const ExifField &field)
    {
        const WideText path = ExifPath(field.directory, field.tag);
        const ExifFieldValue value(field);
        if (value.Get().vt != VT_EMPTY && !Holds(path))
        {
            Set(path, value.Get(), FieldWords(field.tag));
        }
    }

    // What had no room, in words for the log; empty if there was room for all.
    std::string LeftOut() const
    {
        std::string words;
        for (const std::string &each : m_leftOut)
        {
            words += (words.empty() ? "" : ", ") + each;
        }
        return words;
    }

private:
    static WideText DatasetPath(const WCHAR *name)
    {
        return WideText(TEXT("/app13/irb/8bimiptc/iptc/{str=")) + name + TEXT("}");
    }

    static std::string DatasetWords(const WCHAR *name) { return "IPTC " + Utf8FromText(name); }
    static std::string FieldWords(WORD tag) { return "EXIF field " + std::to_string(tag); }

    void LeaveOut(const std::string &words) { m_leftOut.push_back(words); }

    // The first to make room: the largest by far, and of use only to the camera maker's own programs.
    bool SpareMakerNote()
    {
        if (!m_maySpareMakerNote || !CopiedBlocks(m_writer).RemoveMakerNote())
        {
            return false;
        }
        m_maySpareMakerNote = false;
        LeaveOut("the camera's maker note");
        return true;
    }

    void SetText(const WideText &path, WideView text, const std::string &words)
    {
        if (text.size() > LongestText)
        {
            LeaveOut(words);
        }
        else if (!text.empty())
        {
            WideText copy(text);
            PROPVARIANT value = {};
            value.vt = VT_LPWSTR;
            value.pwszVal = copy.data();
            Set(path, value, words);
        }
    }

    void SetTexts(const WideText &path, std::vector<WideText> texts, const std::string &words)
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
        Set(path, value, words);
    }

    bool TakeXmpRoom(size_t size, const std::string &words)
    {
        if (size > MostXmpText - m_xmpText)
        {
            LeaveOut(words);
            return false;
        }
        m_xmpText += size;
        return true;
    }

    struct ExifText
    {
        WideText path;
        std::string words;
        WideView text;
    };

    IWICMetadataQueryWriter &m_writer;
    const WritingNotice &m_notice;
    size_t m_xmpText = 0;
    bool m_maySpareMakerNote = false;
    std::vector<ExifText> m_exifTexts;
    std::vector<std::string> m_leftOut;
};

void WriteCopyright(RecordWriting &writing, const ItemRecord &record)
{
    const WideView artist = ViewOf(record.CopyrightTexts[0]);
    const WideView copyright = ViewOf(record.CopyrightTexts[1]);
    const WideView credit = ViewOf(record.CopyrightTexts[2]);
    writing.AddExifText(ExifField::Directory::Main, Tag::Artist, "artist", artist);
    writing.AddExifText(ExifField::Directory::Main, Tag::Copyright, "copyright", copyright);
    writing.AddExifText(ExifField::Directory::Exif, Tag::UserComment, "comment", ViewOf(record.ExifComment));
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
    writing.AddExifText(ExifField::Directory::Main, Tag::ImageDescription, "description", description);
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

    RecordWriting writing(writer, notice);
    UINT16 orientation = OrientationOf(record);
    if (frame == NewFrame::Copied)
    {
        CopiedBlocks blocks(writer);
        const UINT16 copied = blocks.Orientation();
        orientation = copied != 0 ? copied : orientation;
        if (copyright && iptc && !exif.blank && !gps.blank && !xmp.blank)
        {
            blocks.RemoveClosed();
            writing.FitCopies(record.Widths[0]);
        }
        else
        {
            blocks.RemoveAll();
        }
    }
    if (frame != NewFrame::Processed && orientation != 1)
    {
        writing.SetShort(ExifField::Directory::Main, Tag::Orientation, orientation);
    }
    if (frame != NewFrame::Processed && IsAdobeRgb(record))
    {
        writing.SetAdobeRgb();
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
    writing.WriteExifTexts();
    return writing.LeftOut();
}
