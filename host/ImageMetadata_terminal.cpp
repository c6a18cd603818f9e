#include "host/ImageMetadata.h"

#include "host/ErrnoCodes.h"
#include "host/IptcTexts.h"
#include "host/TextEncodings.h"

#include "core/Hresult.h"

#include <wincodec.h>

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <vector>

namespace
{
std::mutex &ReadingLock()
{
    static std::mutex lock;
    return lock;
}

// The imaging component uses the same library from the plug-in's thread, and the library's XMP toolkit is
// started once for all with the lock of whoever comes first.
void LockToolkit(void *, bool lock)
{
    static std::recursive_mutex toolkit;
    lock ? toolkit.lock() : toolkit.unlock();
}

// exiv2 wants its XMP toolkit started before a second thread uses it, and speaks on stderr by itself.
void StartLibraryOnce()
{
    static const bool started = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        return Exiv2::XmpParser::initialize(LockToolkit, nullptr);
    }();
    static_cast<void>(started);
}

// What one file holds, with the readers of single values. An absent or broken value reads as empty.
class MetadataBlocks
{
public:
    explicit MetadataBlocks(Exiv2::Image &image) : m_image(image) {}

    WideText Xmp(const char *key) const
    {
        const auto datum = m_image.xmpData().findKey(Exiv2::XmpKey(key));
        if (datum == m_image.xmpData().end() || datum->count() == 0)
        {
            return WideText();
        }
        if (const auto *alternatives = dynamic_cast<const Exiv2::LangAltValue *>(&datum->value()))
        {
            const auto chosen = alternatives->value_.find("x-default");
            return Clean(chosen != alternatives->value_.end() ? chosen->second
                                                             : alternatives->value_.begin()->second);
        }
        return Clean(datum->toString(0));
    }

    std::vector<WideText> XmpList(const char *key) const
    {
        std::vector<WideText> texts;
        const auto datum = m_image.xmpData().findKey(Exiv2::XmpKey(key));
        for (long i = 0; datum != m_image.xmpData().end() && i < datum->count(); ++i)
        {
            Append(texts, Clean(datum->toString(i)));
        }
        return texts;
    }

    WideText Iptc(const char *key) const
    {
        const auto datum = m_image.iptcData().findKey(Exiv2::IptcKey(key));
        return datum == m_image.iptcData().end() ? WideText() : Clean(datum->toString());
    }

    std::vector<WideText> IptcList(const char *key) const
    {
        std::vector<WideText> texts;
        const Exiv2::IptcKey wanted(key);
        for (const Exiv2::Iptcdatum &datum : m_image.iptcData())
        {
            if (datum.tag() == wanted.tag() && datum.record() == wanted.record())
            {
                Append(texts, Clean(datum.toString()));
            }
        }
        return texts;
    }

    WideText Exif(const char *key) const { return Clean(ExifBytes(key)); }

    // The tags that Windows writes: UTF-16 in little endian whatever the file's own order is.
    WideText ExifWindowsText(const char *key) const
    {
        return WithoutPadding(TextFromUtf16(ExifBytes(key), ByteOrder16::LittleEndian));
    }

    // A text behind 8 bytes that name its character set.
    WideText ExifCharsetText(const char *key) const
    {
        const std::string bytes = ExifBytes(key);
        const std::string_view view = bytes;
        if (view.size() <= 8)
        {
            return WideText();
        }
        const std::string_view charset = view.substr(0, 8);
        const std::string_view text = view.substr(8);
        if (charset == std::string_view("UNICODE\0", 8))
        {
            const auto fileOrder = m_image.byteOrder() == Exiv2::bigEndian ? ByteOrder16::BigEndian
                                                                           : ByteOrder16::LittleEndian;
            return WithoutPadding(TextFromUtf16Guessing(text, fileOrder));
        }
        if (charset == std::string_view("JIS\0\0\0\0\0", 8))
        {
            return WithoutPadding(TextFromJis(text.substr(0, text.find('\0'))));
        }
        return Clean(std::string(text));
    }

    WideText FileComment() const { return Clean(m_image.comment()); }

private:
    static WideText Clean(const std::string &bytes)
    {
        return WithoutPadding(TextFromUtf8OrLatin(bytes.substr(0, bytes.find('\0'))));
    }

    static void Append(std::vector<WideText> &texts, WideText text)
    {
        if (!text.empty())
        {
            texts.push_back(std::move(text));
        }
    }

    std::string ExifBytes(const char *key) const
    {
        const auto datum = m_image.exifData().findKey(Exiv2::ExifKey(key));
        if (datum == m_image.exifData().end() || datum->size() <= 0)
        {
            return std::string();
        }
        std::vector<Exiv2::byte> bytes(static_cast<size_t>(datum->size()));
        const long length = datum->copy(bytes.data(), m_image.byteOrder());
        return std::string(bytes.begin(), bytes.begin() + std::max(0L, length));
    }

    Exiv2::Image &m_image;
};

WideText FirstText(std::initializer_list<WideText> candidates)
{
    for (const WideText &candidate : candidates)
    {
        if (!candidate.empty())
        {
            return candidate;
        }
    }
    return WideText();
}

std::vector<WideText> ChooseKeywords(const MetadataBlocks &blocks)
{
    std::vector<WideText> keywords = blocks.XmpList("Xmp.dc.subject");
    if (keywords.empty())
    {
        keywords = blocks.IptcList("Iptc.Application2.Keywords");
    }
    return keywords.empty() ? SplitKeywords(blocks.ExifWindowsText("Exif.Image.XPKeywords")) : keywords;
}

WideText JoinNames(const std::vector<WideText> &names)
{
    WideText joined;
    for (const WideText &name : names)
    {
        joined += joined.empty() ? WideText() : WideText(TEXT("; "));
        joined += name;
    }
    return joined;
}

ImageTexts ChooseTexts(const MetadataBlocks &blocks)
{
    ImageTexts texts;
    texts.title = FirstText({blocks.Xmp("Xmp.dc.title"), blocks.Iptc("Iptc.Application2.ObjectName"),
                             blocks.ExifWindowsText("Exif.Image.XPTitle"), blocks.Xmp("Xmp.photoshop.Headline"),
                             blocks.Iptc("Iptc.Application2.Headline")});
    texts.description = FirstText({blocks.Xmp("Xmp.dc.description"), blocks.Iptc("Iptc.Application2.Caption"),
                                   blocks.Exif("Exif.Image.ImageDescription")});
    texts.keywords = ChooseKeywords(blocks);
    texts.comment = FirstText({blocks.ExifCharsetText("Exif.Photo.UserComment"),
                               blocks.ExifWindowsText("Exif.Image.XPComment"),
                               blocks.Xmp("Xmp.exif.UserComment"), blocks.FileComment()});
    texts.artist = FirstText({JoinNames(blocks.XmpList("Xmp.dc.creator")),
                              JoinNames(blocks.IptcList("Iptc.Application2.Byline")),
                              blocks.Exif("Exif.Image.Artist"), blocks.ExifWindowsText("Exif.Image.XPAuthor")});
    texts.copyright = FirstText({blocks.Xmp("Xmp.dc.rights"), blocks.Iptc("Iptc.Application2.Copyright"),
                                 blocks.Exif("Exif.Image.Copyright")});
    texts.credit = FirstText({blocks.Xmp("Xmp.photoshop.Credit"), blocks.Iptc("Iptc.Application2.Credit")});
    for (const IptcTextPlace &place : IPTC_TEXT_PLACES)
    {
        texts.places[place.number] = FirstText({blocks.Xmp(place.xmpKey),
                                                place.iptcKey != nullptr ? blocks.Iptc(place.iptcKey) : WideText()});
    }
    return texts;
}

// A block of EXIF has room for 64 KB; a field of the lists that is larger than this is not sane.
constexpr size_t LONGEST_FIELD = 4096;
constexpr size_t MOST_FIELD_BYTES = 40000;

struct TagRange
{
    uint16_t first;
    uint16_t last;
};

// Make, model, software, date, host computer. The rest of IFD0 describes the file's own layout or
// belongs to other groups.
constexpr TagRange CAMERA_MAIN[] = {{271, 272}, {305, 306}, {316, 316}};

// EXIF 2.32 without the maker note, the user's comment, the owner's name, sound files, and what the new
// file's own pixels say. Dates, exposure, light, sensor, conditions, lens, serial numbers.
constexpr TagRange CAMERA_EXIF[] = {
    {33434, 33434}, {33437, 33437}, {34850, 34850}, {34852, 34852}, {34855, 34856}, {34864, 34869},
    {36864, 36864}, {36867, 36868}, {36880, 36882}, {37121, 37122}, {37377, 37386}, {37396, 37396},
    {37520, 37522}, {37888, 37893}, {40961, 40961}, {41483, 41484}, {41486, 41488}, {41492, 41493}, {41495, 41495},
    {41728, 41730}, {41985, 41996}, {42016, 42016}, {42033, 42037}, {42080, 42082}, {42240, 42240},
};

constexpr TagRange GPS_TAGS[] = {{0, 31}};

template <size_t N>
bool IsIn(const TagRange (&ranges)[N], uint16_t tag)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [&](const TagRange &range) { return tag >= range.first && tag <= range.last; });
}

class GroupReading
{
public:
    GroupReading(const Exiv2::Image &image, MetadataSnapshot &groups) : m_groups(groups)
    {
        for (const Exiv2::Exifdatum &datum : image.exifData())
        {
            Take(datum);
        }
    }

    // What a file tells in XMP alone, as PNG files and raw files with their notes in XMP do.
    void TakeFromXmp(const Exiv2::XmpData &xmp)
    {
        Exiv2::ExifData converted;
        try
        {
            Exiv2::copyXmpToExif(xmp, converted);
        }
        catch (const Exiv2::AnyError &)
        {
            // What was converted up to here is taken.
        }
        // Half of a place from one source and half from another would be a third place.
        const bool hasPlace = !m_groups.gps.empty();
        for (const Exiv2::Exifdatum &datum : converted)
        {
            if (datum.groupName() != "GPSInfo" || !hasPlace)
            {
                Take(datum);
            }
        }
    }

private:
    void Take(const Exiv2::Exifdatum &datum)
    {
        using enum ExifField::Directory;
        const std::string group = datum.groupName();
        if (group == "Image" && datum.tag() == 274 && datum.count() > 0)
        {
            const long orientation = datum.toLong();
            m_groups.orientation = static_cast<UINT16>(orientation >= 1 && orientation <= 8 ? orientation : 1);
        }
        else if (group == "Image" && IsIn(CAMERA_MAIN, datum.tag()))
        {
            Keep(m_groups.camera, Main, datum);
        }
        else if (group == "Photo" && IsIn(CAMERA_EXIF, datum.tag()))
        {
            Keep(m_groups.camera, Exif, datum);
        }
        else if (group == "GPSInfo" && IsIn(GPS_TAGS, datum.tag()))
        {
            Keep(m_groups.gps, Gps, datum);
        }
    }

    void Keep(std::vector<ExifField> &fields, ExifField::Directory directory, const Exiv2::Exifdatum &datum)
    {
        const size_t size = datum.size() > 0 ? static_cast<size_t>(datum.size()) : 0;
        const bool known = std::any_of(fields.begin(), fields.end(), [&](const ExifField &field) {
            return field.directory == directory && field.tag == datum.tag();
        });
        if (known || size == 0 || size > LONGEST_FIELD || size > MOST_FIELD_BYTES - m_bytes || datum.typeId() > 12)
        {
            return;
        }
        ExifField field{directory, datum.tag(), static_cast<WORD>(datum.typeId()), std::vector<BYTE>(size)};
        if (datum.copy(field.data.data(), Exiv2::littleEndian) == static_cast<long>(size))
        {
            m_bytes += size;
            fields.push_back(std::move(field));
        }
    }

    MetadataSnapshot &m_groups;
    size_t m_bytes = 0;
};

int NumberOf(const WideText &text, int least, int most)
{
    const bool negative = text.starts_with(TEXT('-'));
    const WideView digits = WideView(text).substr(negative ? 1 : 0);
    if (digits.empty() || digits[0] < '0' || digits[0] > '9')
    {
        return NO_NUMBER;
    }
    // Some writers say "3.0"; no scale has two digits.
    if (digits.size() > 1 && digits[1] != '.')
    {
        return NO_NUMBER;
    }
    const int number = (negative ? -1 : 1) * (digits[0] - '0');
    return number >= least && number <= most ? number : NO_NUMBER;
}

MetadataSnapshot ReadGroups(const Exiv2::Image &image, const MetadataBlocks &blocks)
{
    MetadataSnapshot groups;
    GroupReading reading(image, groups);
    reading.TakeFromXmp(image.xmpData());
    groups.rating = NumberOf(blocks.Xmp("Xmp.xmp.Rating"), -1, 5);
    if (const auto datum = image.exifData().findKey(Exiv2::ExifKey("Exif.Image.Rating"));
        groups.rating == NO_NUMBER && datum != image.exifData().end() && datum->count() > 0)
    {
        const long rating = datum->toLong();
        groups.rating = rating >= 1 && rating <= 5 ? static_cast<int>(rating) : NO_NUMBER;
    }
    groups.urgency = NumberOf(FirstText({blocks.Xmp("Xmp.photoshop.Urgency"),
                                         blocks.Iptc("Iptc.Application2.Urgency")}), 0, 8);
    groups.label = blocks.Xmp("Xmp.xmp.Label");
    return groups;
}

// Not left to the library, which tells a missing file and a strange one apart by prose alone.
HRESULT TryOpen(const std::filesystem::path &file)
{
    if (std::FILE *opened = std::fopen(file.c_str(), "rb"))
    {
        std::fclose(opened);
        return S_OK;
    }
    return HresultFromErrno(errno);
}
} // namespace

HRESULT ReadMetadata(const std::filesystem::path &file, ImageTexts &texts, MetadataSnapshot *groups) noexcept
{
    texts = ImageTexts();
    if (groups != nullptr)
    {
        *groups = MetadataSnapshot();
    }
    return AtBoundary([&] {
        ThrowIfFailed(TryOpen(file));
        const std::lock_guard guard(ReadingLock());
        StartLibraryOnce();
        try
        {
            // Absolute, so that no name looks like one of the library's protocols.
            const auto image = Exiv2::ImageFactory::open(std::filesystem::absolute(file).native());
            image->readMetadata();
            const MetadataBlocks blocks(*image);
            if (groups != nullptr)
            {
                *groups = ReadGroups(*image, blocks);
            }
            texts = ChooseTexts(blocks);
        }
        catch (const Exiv2::BasicError<char> &error)
        {
            texts = ImageTexts();
            if (groups != nullptr)
            {
                *groups = MetadataSnapshot();
            }
            return error.code() == Exiv2::kerFileContainsUnknownImageType ? WINCODEC_ERR_UNKNOWNIMAGEFORMAT
                                                                         : WINCODEC_ERR_BADMETADATAHEADER;
        }
        return S_OK;
    });
}
