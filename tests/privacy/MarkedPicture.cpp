#include "tests/privacy/MarkedPicture.h"

#include "tests/host/SampleDng.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/SamplePictures_posix.h"
#include "tests/privacy/MarkedValues.h"

#include <exiv2/exiv2.hpp>

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

using namespace std::string_literals;

namespace
{
const char *ValueOf(const char *place)
{
    for (const MarkedPlace &other : OtherPlaces)
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
constexpr unsigned char BlockTags[][2] = {{0x02, 0xBC}, {0x83, 0xBB}, {0x86, 0x49}};

bool IsBlockInIfd0(const Exiv2::ExifKey &key)
{
    return std::any_of(std::begin(BlockTags), std::end(BlockTags), [&](const unsigned char(&tag)[2]) {
        return key.groupName() == "Image" && key.tag() == tag[0] * 256 + tag[1] + 1;
    });
}

void RenameBlockTags(std::string &file)
{
    for (const unsigned char(&tag)[2] : BlockTags)
    {
        const auto low = static_cast<char>(tag[1] + 1);
        const auto high = static_cast<char>(tag[0]);
        // Of type 1, in the byte order of the file.
        const bool isBigEndian = file.find(std::string{high, low, 0, 1}) != std::string::npos;
        const size_t found =
            isBigEndian ? file.find(std::string{high, low, 0, 1}) + 1 : file.find(std::string{low, high, 1, 0});
        file.at(found) = static_cast<char>(tag[1]);
    }
}

// In the form that the tag has its text in.
void AddText(Exiv2::ExifData &data, const Exiv2::ExifKey &key, const std::string &text)
{
    static const std::vector<std::string> WithCharset{"UserComment", "GPSProcessingMethod", "GPSAreaInformation"};
    const bool isWide = key.tagName().starts_with("XP");
    if (isWide || IsBlockInIfd0(key))
    {
        const std::string bytes = isWide ? WideBytes(text, false) + "\0\0"s : text;
        const auto value = Exiv2::Value::create(Exiv2::unsignedByte);
        value->read(reinterpret_cast<const Exiv2::byte *>(bytes.data()), static_cast<long>(bytes.size()),
                    Exiv2::littleEndian);
        data.add(key, value.get());
    }
    else if (std::ranges::count(WithCharset, key.tagName()) != 0)
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

std::string Thumbnail()
{
    SampleOptions small{.Width = 16, .Height = 12};
    small.Markers = {{0xE1, "Exif\0\0"s + ValueOf("thumbnail, EXIF")}, {0xFE, ValueOf("thumbnail, COM")}};
    return AsString(MakeJpeg(small));
}

void AddExif(Exiv2::ExifData &data, const std::string &thumbnail)
{
    data["Exif.Image.Make"] = std::string("Panasonic");
    for (const MarkedPlace &place : ExifPlaces)
    {
        AddText(data, Exiv2::ExifKey(place.key), place.value);
    }
    data["Exif.Image.Orientation"] = uint16_t{6};
    data["Exif.Photo.ColorSpace"] = uint16_t{65535};
    data["Exif.Iop.InteroperabilityIndex"] = std::string("R03");
    data["Exif.GPSInfo.GPSLatitudeRef"] = std::string("N");
    Exiv2::URationalValue latitude;
    latitude.value_ = {{47, 1}, {13, 1}, {SecondsNumerator, SecondsDenominator}};
    data["Exif.GPSInfo.GPSLatitude"] = latitude;
    data["Exif.GPSInfo.GPSLongitudeRef"] = std::string("E");
    latitude.value_ = {{8, 1}, {32, 1}, {1, 1}};
    data["Exif.GPSInfo.GPSLongitude"] = latitude;

    if (!thumbnail.empty())
    {
        Exiv2::ExifThumb(data).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(thumbnail.data()),
                                                static_cast<long>(thumbnail.size()));
    }
}

std::string BigEndian(size_t value, int bytes = 4)
{
    return NumberBytes(value, bytes, true);
}

std::string Segment(int marker, const std::string &contents)
{
    return "\xFF"s + static_cast<char>(marker) + BigEndian(contents.size() + 2, 2) + contents;
}

// Of JUMBF, and of the files that are made of boxes.
std::string Box(const char *type, const std::string &contents)
{
    return BigEndian(contents.size() + 8) + type + contents;
}

// The length of the segment at an offset, its marker included.
size_t SegmentLength(const std::string &file, size_t at)
{
    return 2 + (static_cast<unsigned char>(file.at(at + 2)) << 8) + static_cast<unsigned char>(file.at(at + 3));
}

// The offset of the first segment that is neither an application's nor a comment.
size_t EndOfHead(const std::string &file)
{
    size_t at = 2;
    while ((file.at(at + 1) & 0xF0) == 0xE0 || file.at(at + 1) == '\xFE')
    {
        at += SegmentLength(file, at);
    }
    return at;
}

// Bytes that an earlier writer left at the end of the block, pointed to by nothing.
void AddStaleBytes(std::string &file)
{
    const size_t at = file.find("Exif\0\0"s) - 4;
    const size_t length = SegmentLength(file, at);
    const std::string contents = file.substr(at + 4, length - 4) + ValueOf("unused bytes in the EXIF block");
    file.replace(at, length, Segment(0xE1, contents));
}

void AddSegments(std::string &file)
{
    const std::string packet = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                               "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                               "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" exif:GPSAreaInformation=\""s +
                               ValueOf("APP1, extended XMP") + "\"/></rdf:RDF></x:xmpmeta>";
    const std::string added =
        Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0"s + std::string(32, 'A') + BigEndian(packet.size()) +
                          BigEndian(0) + packet) +
        Segment(0xE1, "Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0"s + ValueOf("APP1, second EXIF block")) +
        Segment(0xE2, "MPF\0"s + ValueOf("APP2, list of further pictures")) +
        Segment(0xED, "Photoshop 3.0\0"s + "8BIM\x04\x04\0\0\0\0\0\x16\x1C\x02\x78\0\x11"s +
                          ValueOf("APP13, second segment")) +
        Segment(0xE2, "urn:iso:std:iso:ts:21496:-1\0"s + ValueOf("APP2, a gain map's announcement")) +
        Segment(0xEB,
                "JP\0\1\0\0\0\1"s + Box("jumb", Box("jumd", std::string(16, '\1') + "\3c2pa."s +
                                                                ValueOf("APP11, content credentials") + '\0'))) +
        Segment(0xE6, "GoPro\0DEVC"s + ValueOf("APP6, telemetry of an action camera")) +
        Segment(0xEC, "Ducky\0\2\0\x10\0\0\0\x0E"s + ValueOf("APP12, picture information")) +
        Segment(0xFE, ValueOf("second COM"));
    const size_t endOfHead = EndOfHead(file);
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
    file += Box("ftyp", "mp42\0\0\0\0mp42isom"s) + Box("udta", ValueOf("a motion photo's video behind that"));
}

std::string PngChunk(const std::string &type, const std::string &contents)
{
    const std::string checked = type + contents;
    const auto *bytes = reinterpret_cast<const Bytef *>(checked.data());
    return BigEndian(contents.size()) + checked + BigEndian(crc32(0, bytes, static_cast<uInt>(checked.size())));
}

// What a PNG's own chunks can say: the values of PngPlaces, and exif, a block from its byte order mark on.
void AddPngChunks(std::string &file, const std::string &exif)
{
    constexpr size_t behindTheHeader = 8 + 25;
    std::string chunks = PngChunk("eXIf", exif);
    for (const MarkedPlace &place : PngPlaces)
    {
        // "PNG tEXt Author" is the chunk's type and its keyword.
        const std::string type = std::string(place.key).substr(4, 4);
        const std::string keyword = std::string(place.key).substr(9);
        chunks += PngChunk(type, keyword + (type == "iTXt" ? "\0\0\0en\0\0"s : "\0"s) + place.value);
    }
    file.insert(behindTheHeader, chunks);
    file += "behind the end: "s + PngPlaces.front().value;
}

std::string Written(Exiv2::Image &image)
{
    image.writeMetadata();
    image.io().seek(0, Exiv2::BasicIo::beg);
    const Exiv2::DataBuf bytes = image.io().read(static_cast<long>(image.io().size()));
    std::string file(reinterpret_cast<const char *>(bytes.pData_), static_cast<size_t>(bytes.size_));
    if (image.mimeType() == "image/jpeg")
    {
        RenameBlockTags(file);
    }
    return file;
}

// What vips makes: its words, the new file with such an extension, and further words.
std::string MadeByVips(Contents contents, const std::string &words, const char *further)
{
    const TemporaryFolder folder;
    const std::string name = std::string("made") + ExtensionOf(contents);
    const std::string command = "vips " + words + " " + (folder.Path() / name).string() + further;
    if (std::system(command.c_str()) != 0)
    {
        throw std::runtime_error(command);
    }
    return folder.Read(name);
}

// EXIF and XMP of a JPEG, and its pixels, in a file of boxes, which Exiv2 reads but doesn't write.
std::string AsHeif(const std::string &jpeg)
{
    const TemporaryFolder folder;
    return MadeByVips(Contents::Heif, "copy " + folder.Write("p.jpg", jpeg).string(), "");
}

std::string MakePlainPicture(Contents contents)
{
    switch (contents)
    {
    case Contents::Tiff:
    case Contents::WebP:
    case Contents::Png:
        return MadeByVips(contents, "black", " 16 12 --bands 3");
    case Contents::Raw:
        return MakeDng(64, 48, 1);
    default:
        return AsString(MakeJpeg({.SeveralScans = true}));
    }
}
} // namespace

const char *ExtensionOf(Contents contents)
{
    static constexpr const char *Extensions[] = {".jpg", ".jpg", ".tif", ".webp", ".avif", ".png", ".dng"};
    return Extensions[static_cast<size_t>(contents)];
}

std::string MakeMarkedPicture(Contents contents)
{
    const bool isJpeg = contents == Contents::JpegWithEverything || contents == Contents::JpegWithExifAlone;
    const std::string plain = MakePlainPicture(contents);
    const auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(plain.data()),
                                                 static_cast<long>(plain.size()));
    image->readMetadata();
    AddExif(image->exifData(), isJpeg ? Thumbnail() : std::string());
    if (contents == Contents::JpegWithExifAlone)
    {
        image->setByteOrder(Exiv2::bigEndian);
        return Written(*image);
    }
    if (contents != Contents::WebP && contents != Contents::Heif)
    {
        for (const MarkedPlace &place : IptcPlaces)
        {
            image->iptcData()[place.key] = std::string(place.value);
        }
    }
    for (const MarkedPlace &place : XmpPlaces)
    {
        image->xmpData()[place.key] = std::string(place.value);
    }
    image->xmpData()["Xmp.xmp.Rating"] = std::string("4");
    if (contents == Contents::Png)
    {
        Exiv2::Blob exif;
        Exiv2::ExifParser::encode(exif, Exiv2::bigEndian, image->exifData());
        std::string file = Written(*image);
        AddPngChunks(file, std::string(exif.begin(), exif.end()));
        return file;
    }
    if (contents == Contents::Heif)
    {
        return AsHeif(Written(*image));
    }
    if (!isJpeg)
    {
        return Written(*image);
    }
    image->setComment(ValueOf("COM"));
    std::string file = Written(*image);
    AddStaleBytes(file);
    AddSegments(file);
    return file;
}
