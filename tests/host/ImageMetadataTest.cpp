#include "host/ImageMetadata.h"

#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include <wincodec.h>

#include <exiv2/exiv2.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

#include <sys/resource.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

namespace
{
using Edit = std::function<void(Exiv2::Image &)>;

void SetExif(Exiv2::Image &image, const char *key, Exiv2::TypeId type, const std::string &bytes)
{
    const auto value = Exiv2::Value::create(type);
    value->read(reinterpret_cast<const Exiv2::byte *>(bytes.data()), static_cast<long>(bytes.size()),
                image.byteOrder());
    image.exifData().add(Exiv2::ExifKey(key), value.get());
}

void SetIptc(Exiv2::Image &image, const char *key, const std::string &bytes)
{
    Exiv2::StringValue value(bytes);
    image.iptcData().add(Exiv2::IptcKey(key), &value);
}

void SetXmp(Exiv2::Image &image, const char *key, Exiv2::TypeId type, std::initializer_list<const char *> texts)
{
    const auto value = Exiv2::Value::create(type);
    for (const char *text : texts)
    {
        value->read(text);
    }
    image.xmpData().add(Exiv2::XmpKey(key), value.get());
}

// Numbers, rationals and texts of every directory.
const char *const ExifTags =
    "-ExifIFD:UserComment='größer' -IFD0:ImageDescription=Beschreibung -IFD0:Artist=Anna -IFD0:Copyright=mine "
    "-IFD0:Make=Acme -IFD0:Model=X1 -ExifIFD:FNumber=4 -ExifIFD:ISO=200 -ExifIFD:ExposureTime=1/60 "
    "-ExifIFD:LensModel=L -ExifIFD:SubjectArea='1 2 3' -ExifIFD:ExposureCompensation=-1.5 "
    "-ExifIFD:DateTimeOriginal='2024:05:06 07:08:09' -GPSLatitude=49.5 -GPSLatitudeRef=N -GPSAltitude=12 "
    "-GPSDateStamp='2024:05:06' -IFD0:Rating=4 -IFD0:Orientation#=6 -ExifIFD:ColorSpace#=65535 "
    "-InteropIFD:InteropIndex=R03";

// Of this process, in KiB.
long PeakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

class ImageMetadata : public testing::Test
{
protected:
    fs::path Make(const Edit &edit, const char *name = "picture.jpg")
    {
        const fs::path file = m_folder.Path() / name;
        const auto image = Exiv2::ImageFactory::create(Exiv2::ImageType::jpeg, file.native());
        image->setByteOrder(Exiv2::littleEndian);
        edit(*image);
        image->writeMetadata();
        return file;
    }

    ImageTexts Read(const Edit &edit)
    {
        ImageTexts texts;
        EXPECT_EQ(ReadMetadata(Make(edit), texts, nullptr), S_OK);
        return texts;
    }

    TemporaryFolder m_folder;
};
} // namespace

TEST_F(ImageMetadata, XmpComesBeforeIptcAndExif)
{
    const ImageTexts texts = Read([](Exiv2::Image &image) {
        SetXmp(image, "Xmp.dc.title", Exiv2::langAlt, {"lang=de-DE Titel", "lang=x-default Title"});
        SetXmp(image, "Xmp.dc.description", Exiv2::langAlt, {"lang=ja-JP 説明"});
        SetXmp(image, "Xmp.dc.subject", Exiv2::xmpBag, {"sea", "New York", "a;b"});
        SetXmp(image, "Xmp.dc.creator", Exiv2::xmpSeq, {"Ann", "Bob"});
        SetIptc(image, "Iptc.Application2.Keywords", "other");
    });
    EXPECT_EQ(texts.title, u"Title");
    EXPECT_EQ(texts.description, u"説明");
    EXPECT_THAT(texts.keywords, ElementsAre(u"sea", u"New York", u"a;b"));
    EXPECT_EQ(texts.artist, u"Ann; Bob");
}

TEST_F(ImageMetadata, XmpIsReadBeyondTheFirstPacket)
{
    const std::string identifier(32, 'A');
    Exiv2::XmpProperties::registerNs("http://ns.adobe.com/xmp/note/", "xmpNote");
    const fs::path file = Make([&](Exiv2::Image &image) {
        SetXmp(image, "Xmp.dc.title", Exiv2::langAlt, {"lang=x-default Title"});
        SetXmp(image, "Xmp.xmpNote.HasExtendedXMP", Exiv2::xmpText, {identifier.c_str()});
    });
    Exiv2::XmpData beyond;
    beyond["Xmp.dc.title"] = "other";
    beyond["Xmp.dc.subject"] = "word";
    beyond["Xmp.dc.description"] = std::string(70000, 'd');
    std::string packet;
    ASSERT_EQ(Exiv2::XmpParser::encode(packet, beyond), 0);
    const auto bigEndian = [](size_t value, int bytes) {
        std::string text;
        for (; bytes > 0; --bytes)
        {
            text += static_cast<char>(value >> 8 * (bytes - 1));
        }
        return text;
    };
    const auto part = [&](size_t from, size_t length) {
        const std::string contents = "http://ns.adobe.com/xmp/extension/\0"s + identifier +
                                     bigEndian(packet.size(), 4) + bigEndian(from, 4) +
                                     packet.substr(from, length);
        return "\xFF\xE1"s + bigEndian(contents.size() + 2, 2) + contents;
    };
    const std::string first = m_folder.Read(file.filename());
    const size_t half = packet.size() / 2;
    for (const bool isWhole : {true, false})
    {
        std::string bytes = first;
        bytes.insert(2, part(half, packet.size()) + (isWhole ? part(0, half) : std::string()));
        ImageTexts texts;
        ASSERT_EQ(ReadMetadata(m_folder.Write("far.jpg", bytes), texts, nullptr), S_OK);
        EXPECT_EQ(texts.title, u"Title");
        EXPECT_EQ(texts.description.size(), isWhole ? 70000u : 0u);
        EXPECT_EQ(texts.keywords.size(), isWhole ? 1u : 0u);
    }
}

TEST_F(ImageMetadata, IptcIsReadWithAndWithoutItsDeclaredCharset)
{
    const struct
    {
        std::string charset;
        std::string bytes;
        WideText expected;
    } cases[] = {{"\x1B%G", "Größe 漢字 📷", u"Größe 漢字 📷"},
                 {"\x1B%G", "Gr\xF6\xDF"s + "e", u"Größe"},
                 {"", "padded\0\0"s, u"padded"}};
    for (const auto &c : cases)
    {
        const ImageTexts texts = Read([&](Exiv2::Image &image) {
            if (!c.charset.empty())
            {
                SetIptc(image, "Iptc.Envelope.CharacterSet", c.charset);
            }
            SetIptc(image, "Iptc.Application2.ObjectName", c.bytes);
            SetIptc(image, "Iptc.Application2.Caption", c.bytes);
            SetIptc(image, "Iptc.Application2.Keywords", c.bytes);
            SetIptc(image, "Iptc.Application2.Keywords", "second");
        });
        EXPECT_EQ(texts.title, c.expected);
        EXPECT_EQ(texts.description, c.expected);
        EXPECT_THAT(texts.keywords, ElementsAre(c.expected, u"second"));
    }
}

TEST_F(ImageMetadata, UserCommentsAreReadInTheirNamedCharsetAndAnyByteOrder)
{
    const struct
    {
        Exiv2::ByteOrder order;
        std::string bytes;
        WideText expected;
    } cases[] = {{Exiv2::littleEndian, "ASCII\0\0\0plain\0\0"s, u"plain"},
                 {Exiv2::littleEndian, "ASCII\0\0\0caf\xE9"s, u"café"},
                 {Exiv2::littleEndian, "UNICODE\0H\0i\0\xF6\0"s, u"Hiö"},
                 {Exiv2::littleEndian, "JIS\0\0\0\0\0\x1B$B4A;z\x1B(B"s, u"漢字"},
                 {Exiv2::littleEndian, "\0\0\0\0\0\0\0\0größe"s, u"größe"},
                 {Exiv2::littleEndian, "ASCII\0\0\0        "s, u""},
                 {Exiv2::bigEndian, "UNICODE\0\x6F\x22\x5B\x57"s, u"漢字"}};
    for (const auto &c : cases)
    {
        const ImageTexts texts = Read([&](Exiv2::Image &image) {
            image.setByteOrder(c.order);
            SetExif(image, "Exif.Photo.UserComment", Exiv2::undefined, c.bytes);
        });
        EXPECT_EQ(texts.comment, c.expected) << c.bytes;
    }
}

TEST_F(ImageMetadata, ExifAndWindowsTagsFillWhatTheOthersLack)
{
    const auto wide = [](std::u16string_view text) {
        std::string bytes;
        for (const char16_t unit : text)
        {
            bytes += static_cast<char>(unit & 0xFF);
            bytes += static_cast<char>(unit >> 8);
        }
        return bytes;
    };
    const ImageTexts texts = Read([&](Exiv2::Image &image) {
        image.exifData()["Exif.Image.ImageDescription"] = "OLYMPUS      ";
        image.exifData()["Exif.Image.Copyright"] = "(c) J\xFCrgen"s;
        image.exifData()["Exif.Image.Artist"] = "Jürgen";
        SetExif(image, "Exif.Image.XPTitle", Exiv2::unsignedByte, wide(std::u16string_view(u"Čas\0\0", 5)));
        SetExif(image, "Exif.Image.XPKeywords", Exiv2::unsignedByte, wide(u"a;b c; ď"));
        SetExif(image, "Exif.Image.XPComment", Exiv2::unsignedByte, wide(u"komentář"));
        image.setComment("of the segment");
    });
    EXPECT_EQ(texts.title, u"Čas");
    EXPECT_EQ(texts.description, u"OLYMPUS");
    EXPECT_THAT(texts.keywords, ElementsAre(u"a", u"b c", u"ď"));
    EXPECT_EQ(texts.comment, u"komentář");
    EXPECT_EQ(texts.copyright, u"(c) Jürgen");
    EXPECT_EQ(texts.artist, u"Jürgen");
    EXPECT_EQ(Read([](Exiv2::Image &image) { image.setComment("of the segment"); }).comment, u"of the segment");
    EXPECT_EQ(Read([](Exiv2::Image &) {}), ImageTexts());
}

TEST_F(ImageMetadata, AFileThatIsNoPictureFailsInCodes)
{
    ImageTexts texts;
    EXPECT_EQ(ReadMetadata(m_folder.Write("text.jpg", "not a picture at all, really"), texts, nullptr),
              WINCODEC_ERR_UNKNOWNIMAGEFORMAT);
    EXPECT_LT(ReadMetadata(m_folder.Write("empty.jpg", ""), texts, nullptr), 0);
    EXPECT_LT(ReadMetadata(m_folder.Path(), texts, nullptr), 0);
}

TEST_F(ImageMetadata, NoDamageBreaksTheReader)
{
    const fs::path whole = Make([](Exiv2::Image &image) {
        SetXmp(image, "Xmp.dc.title", Exiv2::langAlt, {"lang=x-default Title"});
        SetIptc(image, "Iptc.Application2.Keywords", "word");
        SetExif(image, "Exif.Photo.UserComment", Exiv2::undefined, "ASCII\0\0\0text"s);
        image.exifData()["Exif.Image.Artist"] = "someone";
    });
    const fs::path boxes = m_folder.Path() / "picture.avif";
    ASSERT_EQ(std::system(("vips copy " + whole.string() + " " + boxes.string() + " 2>&1").c_str()), 0);
    for (const fs::path &file : {whole, boxes})
    {
        ImageTexts texts;
        ASSERT_EQ(ReadMetadata(file, texts, nullptr), S_OK);
        EXPECT_EQ(texts.title + texts.comment + texts.artist, u"Titletextsomeone") << file;
        const std::string bytes = m_folder.Read(file.filename());
        for (size_t at = 2; at < bytes.size(); at += 17)
        {
            std::string broken = bytes;
            broken[at] = static_cast<char>(broken[at] ^ 0xFF);
            ReadMetadata(m_folder.Write("broken", broken), texts, nullptr);
            ReadMetadata(m_folder.Write("cut", bytes.substr(0, at)), texts, nullptr);
        }
    }
}

TEST_F(ImageMetadata, AHugeFileIsNotLoaded)
{
    const fs::path file =
        Make([](Exiv2::Image &image) { SetIptc(image, "Iptc.Application2.ObjectName", "huge"); });
    fs::resize_file(file, 1500u << 20);
    const long before = PeakMemory();
    ImageTexts texts;
    ASSERT_EQ(ReadMetadata(file, texts, nullptr), S_OK);
    EXPECT_EQ(texts.title, u"huge");
    EXPECT_LT(PeakMemory() - before, 32 << 10) << "KiB";
}

// The reader by queries against the one that reads files: both must find the same in a picture's EXIF block, of which
// alone the native imaging component tells.
TEST_F(ImageMetadata, IsFoundByQueriesToo)
{
    const fs::path file = m_folder.Path() / "a.jpg";
    MakeSample(file, 32, 24);
    Exiftool(ExifTags, file);
    ImageTexts wanted;
    MetadataSnapshot wantedGroups;
    ASSERT_EQ(ReadMetadata(file, wanted, &wantedGroups), S_OK);

    const std::string bytes = m_folder.Read("a.jpg");
    ComPtr<IWICBitmapFrameDecode> frame;
    ASSERT_EQ(OpenFrame(Octets(bytes.begin(), bytes.end()), frame), S_OK);
    ComPtr<IWICMetadataQueryReader> reader;
    ASSERT_EQ(frame->GetMetadataQueryReader(reader.Put()), S_OK);
    ImageTexts found;
    MetadataSnapshot groups;
    ReadFrameMetadata(*reader.Get(), found, &groups);

    EXPECT_EQ(found, wanted);
    EXPECT_EQ(found.description, u"Beschreibung");
    EXPECT_EQ(found.comment, u"größer");
    EXPECT_EQ(found.artist, u"Anna");
    EXPECT_EQ(found.copyright, u"mine");
    for (std::vector<ExifField> *fields : {&groups.camera, &groups.gps, &wantedGroups.camera, &wantedGroups.gps})
    {
        std::sort(fields->begin(), fields->end());
    }
    EXPECT_EQ(groups.camera, wantedGroups.camera);
    EXPECT_GE(groups.camera.size(), 9u);
    EXPECT_EQ(groups.gps, wantedGroups.gps);
    EXPECT_GE(groups.gps.size(), 4u);
    EXPECT_EQ(groups.orientation, 6);
    EXPECT_TRUE(groups.isAdobeRgb && wantedGroups.isAdobeRgb);
    EXPECT_EQ(groups.rating, 4);
}
