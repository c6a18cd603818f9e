#include "host/MetadataValues.h"

#include "host/CopiedBlocks.h"
#include "host/ExifFields.h"
#include "host/SystemWords.h"
#include "host/TextEncodings.h"

#include "com/Hresult.h"

#include <algorithm>

namespace
{
// The imaging component tells when an EXIF block is full, but not of XMP before the pixels are written.
constexpr size_t LongestText = 8000;
constexpr size_t MostXmpText = 12000;

PROPVARIANT NumberOf(VARTYPE type, UINT32 number)
{
    PROPVARIANT value = {};
    value.vt = type;
    value.ulVal = number; // of a short, its lower half
    return value;
}

WideText DatasetPath(const IptcDataset &dataset)
{
    return WideText(TEXT("/app13/irb/8bimiptc/iptc/{str=")) + dataset.name + TEXT("}");
}

std::string DatasetWords(const IptcDataset &dataset)
{
    return "IPTC " + Utf8FromText(dataset.name);
}

std::string FieldWords(WORD tag)
{
    return "EXIF field " + std::to_string(tag);
}
} // namespace

bool MetadataValues::Holds(const WideText &path)
{
    return m_writer.GetMetadataByName(path.c_str(), nullptr) == S_OK;
}

void MetadataValues::FitCopies(UINT32 width)
{
    const WideText path = ExifPath(ExifField::Directory::Exif, ExifTag::PixelXDimension);
    const PROPVARIANT value = NumberOf(VT_UI4, width);
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

// The first to make room: the largest by far, and of use only to the camera maker's own programs.
bool MetadataValues::SpareMakerNote()
{
    if (!m_maySpareMakerNote || !CopiedBlocks(m_writer).RemoveMakerNote())
    {
        return false;
    }
    m_maySpareMakerNote = false;
    LeaveOut("the camera's maker note");
    return true;
}

void MetadataValues::Set(const WideText &path, const PROPVARIANT &value, const std::string &words)
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
        m_notice("The metadata " + Utf8FromText(path) + " can't be written (" + CodeText(result) + ").");
    }
}

void MetadataValues::SetNumber(ExifField::Directory directory, WORD tag, VARTYPE type, UINT32 number)
{
    Set(ExifPath(directory, tag), NumberOf(type, number), FieldWords(tag));
}

void MetadataValues::SetAdobeRgb()
{
    if (!Holds(ExifPath(ExifField::Directory::Exif, ExifTag::ColorSpace)))
    {
        SetNumber(ExifField::Directory::Exif, ExifTag::ColorSpace, VT_UI2, UncalibratedColorSpace);
    }
    std::string index(AdobeRgbIndex);
    PROPVARIANT value = {};
    value.vt = VT_LPSTR;
    value.pszVal = index.data();
    Set(TEXT("/app1/ifd/exif/interop/{ushort=1}"), value, "EXIF interoperability index");
}

void MetadataValues::SetField(const ExifField &field)
{
    const WideText path = ExifPath(field.directory, field.tag);
    const ExifFieldValue value(field);
    if (value.Get().vt != VT_EMPTY && !Holds(path))
    {
        Set(path, value.Get(), FieldWords(field.tag));
    }
}

void MetadataValues::AddExifText(ExifField::Directory directory, WORD tag, const char *words, WideView text)
{
    m_exifTexts.push_back({ExifPath(directory, tag), std::string("EXIF ") + words, text});
}

void MetadataValues::WriteExifTexts()
{
    std::stable_sort(m_exifTexts.begin(), m_exifTexts.end(),
                     [](const ExifText &a, const ExifText &b) { return a.text.size() < b.text.size(); });
    for (const ExifText &each : m_exifTexts)
    {
        SetText(each.path, each.text, each.words);
    }
}

bool MetadataValues::TakeXmpRoom(size_t size, const std::string &words)
{
    if (size > MostXmpText - m_xmpText)
    {
        LeaveOut(words);
        return false;
    }
    m_xmpText += size;
    return true;
}

void MetadataValues::SetProperty(const WCHAR *name, WideView text)
{
    const std::string words = "XMP " + Utf8FromText(name);
    if (TakeXmpRoom(text.size(), words))
    {
        SetText(WideText(TEXT("/xmp/")) + name, text, words);
    }
}

void MetadataValues::SetProperties(WideView name, const std::vector<WideText> &texts)
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

void MetadataValues::SetDataset(const IptcDataset &dataset, WideView text)
{
    if (dataset.name != nullptr)
    {
        SetText(DatasetPath(dataset), text, DatasetWords(dataset));
    }
}

void MetadataValues::SetDatasets(const IptcDataset &dataset, const std::vector<WideText> &texts)
{
    SetTexts(DatasetPath(dataset), texts, DatasetWords(dataset));
}

void MetadataValues::SetText(const WideText &path, WideView text, const std::string &words)
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

void MetadataValues::SetTexts(const WideText &path, std::vector<WideText> texts, const std::string &words)
{
    if (texts.empty())
    {
        return;
    }
    std::vector<WCHAR *> elements;
    elements.reserve(texts.size());
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

std::string MetadataValues::LeftOut() const
{
    std::string words;
    for (const std::string &each : m_leftOut)
    {
        words += (words.empty() ? "" : ", ") + each;
    }
    return words;
}
