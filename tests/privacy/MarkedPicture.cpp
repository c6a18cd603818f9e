#include "tests/privacy/MarkedPicture.h"

#include "tests/platform/windowscodecs_jpeg/SamplePictures.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <functional>
#include <stdexcept>

using namespace std::string_literals;

namespace
{
// Seconds of the latitude: a fraction that no other value of the file has.
constexpr unsigned secondsNumerator = 987654321;
constexpr unsigned secondsDenominator = 20000003;

std::string Text(const std::string &value, bool isBigEndian)
{
    std::string wide;
    for (const char unit : value)
    {
        wide += isBigEndian ? "\0"s + unit : unit + "\0"s;
    }
    return wide;
}

std::string Bytes(unsigned value, bool isBigEndian)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
    {
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
    if (isBigEndian)
    {
        std::reverse(bytes.begin(), bytes.end());
    }
    return bytes;
}

struct Place
{
    const char *key;    // Exiv2's, or a word for what it doesn't write
    const char *value;
    std::vector<unsigned> leave;
};

// Copyright: artist, copyright, comment. EXIF: camera and shooting data. XMP: rating, label, urgency.
// IPTC: caption, title, keywords, location, usage rights. What one program's group names by another's
// word belongs to the group of its meaning, wherever it lies.
const std::vector<Place> &ExifPlaces()
{
    static const std::vector<Place> places{
        {"Exif.Image.Artist", "qzArtistIfd0", {Copyright}},
        {"Exif.Image.Copyright", "qzCopyrightIfd0", {Copyright}},
        {"Exif.Image.XPAuthor", "qzXpAuthor", {Copyright}},
        {"Exif.Image.XPComment", "qzXpComment", {Copyright}},
        {"Exif.Photo.UserComment", "qzUserComment", {Copyright}},
        {"Exif.Photo.CameraOwnerName", "qzCameraOwner", {Exif, Copyright}},
        {"Exif.Thumbnail.Artist", "qzArtistIfd1", {Copyright}},
        {"Exif.Thumbnail.Copyright", "qzCopyrightIfd1", {Copyright}},
        {"Exif.Thumbnail.Model", "qzModelIfd1", {Exif}},
        {"Exif.Image.Model", "qzModelIfd0", {Exif}},
        {"Exif.Image.Software", "qzSoftware", {Exif}},
        {"Exif.Photo.LensModel", "qzLensModel", {Exif}},
        {"Exif.Photo.BodySerialNumber", "qzBodySerial", {Exif}},
        {"Exif.Panasonic.InternalSerialNumber", "qzMakerSerial", {Exif}},
        {"Exif.Panasonic.City", "qzMakerCity", {Exif | Gps}},
        {"Exif.Panasonic.Landmark", "qzMakerLandmark", {Exif | Gps}},
        {"Exif.GPSInfo.GPSProcessingMethod", "qzGpsMethod", {Gps}},
        {"Exif.GPSInfo.GPSAreaInformation", "qzGpsArea", {Gps}},
        {"Exif.GPSInfo.GPSMapDatum", "qzGpsDatum", {Gps}},
        {"Exif.GPSInfo.GPSDateStamp", "1971:02:03", {Gps}},
        {"Exif.Photo.DateTimeOriginal", "1972:03:04 05:06:07", {Exif}},
        {"Exif.Photo.ImageUniqueID", "qzUniqueId", {Exif}},
        {"Exif.Image.HostComputer", "qzHostComputer", {Exif}},
        {"Exif.Image.DocumentName", "qzDocumentName", {Exif, Iptc}},
        {"Exif.Photo.0xa436", "qzExif3Title", {Iptc}},
        {"Exif.Photo.0xa437", "qzExif3Photographer", {Copyright}},
        {"Exif.Image.0x02bd", "<x qzXmpGpsInIfd0/>", {AllGroups}},
        {"Exif.Image.0x83bc", "qzIptcInIfd0", {AllGroups}},
        {"Exif.Image.0x864a", "8BIMqzResourceInIfd0", {AllGroups}},
        {"Exif.Image.ImageDescription", "qzImageDescription", {Iptc}},
        {"Exif.Image.XPTitle", "qzXpTitle", {Iptc}},
        {"Exif.Image.XPSubject", "qzXpSubject", {Iptc}},
        {"Exif.Image.XPKeywords", "qzXpKeywords", {Iptc}},
    };
    return places;
}

const std::vector<Place> &IptcPlaces()
{
    static const std::vector<Place> places{
        {"Iptc.Application2.Caption", "qzIptcCaption", {Iptc}},
        {"Iptc.Application2.ObjectName", "qzIptcTitle", {Iptc}},
        {"Iptc.Application2.Keywords", "qzIptcKeyword", {Iptc}},
        {"Iptc.Application2.City", "qzIptcCity", {Iptc}},
        {"Iptc.Application2.SubLocation", "qzIptcSubLocation", {Iptc}},
        {"Iptc.Application2.Byline", "qzIptcByline", {Iptc, Copyright}},
        {"Iptc.Application2.Copyright", "qzIptcCopyright", {Iptc, Copyright}},
        {"Iptc.Application2.Credit", "qzIptcCredit", {Iptc, Copyright}},
    };
    return places;
}

const std::vector<Place> &XmpPlaces()
{
    static const std::vector<Place> places{
        {"Xmp.xmp.Label", "qzXmpLabel", {Xmp}},
        {"Xmp.dc.title", "qzXmpTitle", {Iptc}},
        {"Xmp.dc.description", "qzXmpDescription", {Iptc}},
        {"Xmp.dc.subject", "qzXmpSubject", {Iptc}},
        {"Xmp.photoshop.City", "qzXmpCity", {Iptc}},
        {"Xmp.photoshop.Credit", "qzXmpCredit", {Iptc, Copyright}},
        {"Xmp.dc.creator", "qzXmpCreator", {Iptc, Copyright}},
        {"Xmp.dc.rights", "qzXmpRights", {Iptc, Copyright}},
        {"Xmp.xmpRights.UsageTerms", "qzXmpUsage", {Iptc, Copyright}},
        {"Xmp.exif.UserComment", "qzXmpComment", {Copyright}},
        {"Xmp.exif.GPSLatitude", "47,13.8264135N", {Gps}},
        {"Xmp.exif.GPSProcessingMethod", "qzXmpGps", {Gps}},
        {"Xmp.aux.SerialNumber", "qzXmpSerial", {Exif}},
        {"Xmp.tiff.Model", "qzXmpModel", {Exif}},
    };
    return places;
}

// Segments that are no EXIF, XMP or IPTC, or more of it than the usual. What programs put into segments of
// their own can be anything, so these go only with everything.
const std::vector<Place> &OtherPlaces()
{
    static const std::vector<Place> places{
        {"COM", "qzComment", {Copyright}},
        {"second COM", "qzSecondComment", {Copyright}},
        {"APP1, extended XMP", "qzExtendedXmpGps", {Gps}},
        {"APP6, telemetry of an action camera", "qzTelemetryGps", {AllGroups}},
        {"APP12, picture information", "qzDuckyComment", {AllGroups}},
        {"APP1, second EXIF block", "qzSecondExifGps", {}},
        {"APP2, list of further pictures", "qzFurtherPictures", {AllGroups}},
        {"APP13, second segment", "qzSecondResources", {Iptc}},
        {"COM before the first scan", "qzLateComment", {Copyright}},
        {"APP1 before the first scan", "qzLateExifGps", {}},
        {"APP6 between two scans", "qzLaterTelemetryGps", {AllGroups}},
        {"thumbnail, COM", "qzThumbComment", {Exif | Copyright}},
        {"thumbnail, EXIF", "qzThumbGps", {Exif | Gps}},
        {"unused bytes in the EXIF block", "qzStaleGps", {}},
        {"second picture behind the end", "qzTrailerGps", {}},
    };
    return places;
}

const char *ValueOf(const char *place)
{
    for (const Place &other : OtherPlaces())
    {
        if (place == std::string(other.key))
        {
            return other.value;
        }
    }
    throw std::logic_error(place);
}

std::string AsString(const Octets &bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

// XMP, IPTC and Photoshop's resources as tags of IFD0. Exiv2 leaves them out of a JPEG, so they are written
// one number too high and renamed in the finished file.
constexpr unsigned char blockTags[][2] = {{0x02, 0xBC}, {0x83, 0xBB}, {0x86, 0x49}};

bool IsBlockInIfd0(const Exiv2::ExifKey &key)
{
    return std::any_of(std::begin(blockTags), std::end(blockTags), [&](const unsigned char (&tag)[2]) {
        return key.groupName() == "Image" && key.tag() == tag[0] * 256 + tag[1] + 1;
    });
}

void RenameBlockTags(std::string &file)
{
    for (const unsigned char (&tag)[2] : blockTags)
    {
        const auto low = static_cast<char>(tag[1] + 1);
        const auto high = static_cast<char>(tag[0]);
        // Of type 1, in the byte order of the file.
        const bool isBigEndian = file.find(std::string{high, low, 0, 1}) != std::string::npos;
        const size_t found = isBigEndian ? file.find(std::string{high, low, 0, 1}) + 1 : file.find(std::string{low, high, 1, 0});
        file.at(found) = static_cast<char>(tag[1]);
    }
}

// In the form that the tag has its text in.
void AddText(Exiv2::ExifData &data, const Exiv2::ExifKey &key, const std::string &text)
{
    static const std::vector<std::string> withCharset{"UserComment", "GPSProcessingMethod", "GPSAreaInformation"};
    const bool isWide = key.tagName().starts_with("XP");
    if (isWide || IsBlockInIfd0(key))
    {
        const std::string bytes = isWide ? Text(text, false) + "\0\0"s : text;
        const auto value = Exiv2::Value::create(Exiv2::unsignedByte);
        value->read(reinterpret_cast<const Exiv2::byte *>(bytes.data()), static_cast<long>(bytes.size()),
                    Exiv2::littleEndian);
        data.add(key, value.get());
    }
    else if (std::ranges::count(withCharset, key.tagName()) != 0)
    {
        const Exiv2::CommentValue value("charset=Ascii " + text);
        data.add(key, &value);
    }
    else
    {
        const Exiv2::AsciiValue value(text);
        data.add(key, &value);
    }
}

void AddExif(Exiv2::ExifData &data)
{
    data["Exif.Image.Make"] = std::string("Panasonic");
    for (const Place &place : ExifPlaces())
    {
        AddText(data, Exiv2::ExifKey(place.key), place.value);
    }
    data["Exif.GPSInfo.GPSLatitudeRef"] = std::string("N");
    Exiv2::URationalValue latitude;
    latitude.value_ = {{47, 1}, {13, 1}, {secondsNumerator, secondsDenominator}};
    data["Exif.GPSInfo.GPSLatitude"] = latitude;
    data["Exif.GPSInfo.GPSLongitudeRef"] = std::string("E");
    latitude.value_ = {{8, 1}, {32, 1}, {1, 1}};
    data["Exif.GPSInfo.GPSLongitude"] = latitude;

    SampleOptions small{.Width = 16, .Height = 12};
    small.Markers = {{0xE1, "Exif\0\0"s + ValueOf("thumbnail, EXIF")}, {0xFE, ValueOf("thumbnail, COM")}};
    const Octets thumbnail = MakeJpeg(small);
    Exiv2::ExifThumb(data).setJpegThumbnail(thumbnail.data(), static_cast<long>(thumbnail.size()));
}

std::string Segment(int marker, const std::string &contents)
{
    const size_t length = contents.size() + 2;
    return "\xFF"s + static_cast<char>(marker) + static_cast<char>(length >> 8) + static_cast<char>(length & 0xFF) +
           contents;
}

// The offset of the first segment that is neither an application's nor a comment, and on the way there
// calls seen(offset, length) of each.
size_t EndOfHead(const std::string &file, const std::function<void(size_t, size_t)> &seen)
{
    size_t at = 2;
    for (;;)
    {
        const auto marker = static_cast<unsigned char>(file.at(at + 1));
        if ((marker & 0xF0) != 0xE0 && marker != 0xFE)
        {
            return at;
        }
        const size_t length = 2 + (static_cast<unsigned char>(file.at(at + 2)) << 8) +
                              static_cast<unsigned char>(file.at(at + 3));
        seen(at, length);
        at += length;
    }
}

// Bytes that an earlier writer left at the end of the block, pointed to by nothing.
void AddStaleBytes(std::string &file)
{
    size_t found = 0;
    size_t foundLength = 0;
    EndOfHead(file, [&](size_t at, size_t length) {
        if (file.compare(at + 4, 6, "Exif\0\0"s) == 0)
        {
            found = at;
            foundLength = length;
        }
    });
    const std::string contents = file.substr(found + 4, foundLength - 4) + ValueOf("unused bytes in the EXIF block");
    file.replace(found, foundLength, Segment(0xE1, contents));
}

void AddSegments(std::string &file)
{
    const std::string packet = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                               "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                               "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" exif:GPSAreaInformation=\""s +
                               ValueOf("APP1, extended XMP") + "\"/></rdf:RDF></x:xmpmeta>";
    const std::string added =
        Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0"s + std::string(32, 'A') +
                          Bytes(static_cast<unsigned>(packet.size()), true) + Bytes(0, true) + packet) +
        Segment(0xE1, "Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0"s + ValueOf("APP1, second EXIF block")) +
        Segment(0xE2, "MPF\0"s + ValueOf("APP2, list of further pictures")) +
        Segment(0xED, "Photoshop 3.0\0"s + "8BIM\x04\x04\0\0\0\0\0\x16\x1C\x02\x78\0\x11"s +
                          ValueOf("APP13, second segment")) +
        Segment(0xE6, "GoPro\0DEVC"s + ValueOf("APP6, telemetry of an action camera")) +
        Segment(0xEC, "Ducky\0\2\0\x10\0\0\0\x0E"s + ValueOf("APP12, picture information")) +
        Segment(0xFE, ValueOf("second COM"));
    const size_t endOfHead = EndOfHead(file, [](size_t, size_t) {});
    file.insert(endOfHead, added);
    const size_t firstScan = file.find("\xFF\xDA", endOfHead + added.size());
    const size_t secondScan = file.find("\xFF\xDA", firstScan + 1);
    file.insert(secondScan, Segment(0xE6, ValueOf("APP6 between two scans")));
    file.insert(firstScan,
                Segment(0xFE, ValueOf("COM before the first scan")) +
                    Segment(0xE1, "Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0"s + ValueOf("APP1 before the first scan")));

    SampleOptions small{.Width = 16, .Height = 12};
    small.Markers = {{0xE1, "Exif\0\0"s + ValueOf("second picture behind the end")}};
    file += AsString(MakeJpeg(small));
}

std::string Written(Exiv2::Image &image)
{
    image.writeMetadata();
    image.io().seek(0, Exiv2::BasicIo::beg);
    const Exiv2::DataBuf bytes = image.io().read(static_cast<long>(image.io().size()));
    std::string file(reinterpret_cast<const char *>(bytes.pData_), static_cast<size_t>(bytes.size_));
    RenameBlockTags(file);
    return file;
}
} // namespace

const std::vector<MarkedValue> &MarkedValues()
{
    static const std::vector<MarkedValue> values = [] {
        std::vector<MarkedValue> all;
        for (const auto *places : {&ExifPlaces(), &IptcPlaces(), &XmpPlaces(), &OtherPlaces()})
        {
            for (const Place &place : *places)
            {
                all.push_back({place.key, place.value, true, place.leave});
            }
        }
        for (const bool isBigEndian : {false, true})
        {
            all.push_back({"Exif.GPSInfo.GPSLatitude",
                           Bytes(secondsNumerator, isBigEndian) + Bytes(secondsDenominator, isBigEndian), false,
                           {Gps}});
        }
        return all;
    }();
    return values;
}

std::string MakeMarkedPicture(Blocks blocks)
{
    const Octets plain = MakeJpeg({.SeveralScans = true});
    const auto image = Exiv2::ImageFactory::open(plain.data(), static_cast<long>(plain.size()));
    image->readMetadata();
    AddExif(image->exifData());
    if (blocks == Blocks::ExifAlone)
    {
        image->setByteOrder(Exiv2::bigEndian);
        return Written(*image);
    }
    image->setComment(ValueOf("COM"));
    for (const Place &place : IptcPlaces())
    {
        image->iptcData()[place.key] = std::string(place.value);
    }
    for (const Place &place : XmpPlaces())
    {
        image->xmpData()[place.key] = std::string(place.value);
    }
    image->xmpData()["Xmp.xmp.Rating"] = std::string("4");
    std::string file = Written(*image);
    AddStaleBytes(file);
    AddSegments(file);
    return file;
}

size_t FindValue(const std::string &file, const MarkedValue &value)
{
    size_t found = file.find(value.bytes);
    for (const bool isBigEndian : {false, true})
    {
        if (found == std::string::npos && value.isText)
        {
            found = file.find(Text(value.bytes, isBigEndian));
        }
    }
    return found;
}
