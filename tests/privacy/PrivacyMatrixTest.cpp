// Whatever is switched off stays at home: the plug-in's upload with the real imaging component and the real
// host, over all choices of the five groups. Looked at are the bytes of the picture as they would be sent,
// for values rather than tags. The form around the picture is another matter: title, description and tags
// have switches of their own.
#include "tests/privacy/MarkedPicture.h"
#include "tests/privacy/MarkedValues.h"

#include <exiv2/exiv2.hpp>

#include "host/PublishingHost.h"
#include "tests/doubles/FakeHost.h"
#include "tests/doubles/FakeWebComponents.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/doubles/SingleUpload.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using namespace std::string_literals;
using Lines = std::vector<std::string>;

namespace
{
enum class FirstWriting
{
    Succeeds,
    FailsBefore, // nothing is written
    FailsAfter   // everything is written, and then it fails
};

// That of the real host, but that its first writing may fail.
class Metadata final : public ComObject<Metadata, IHalvoraImageMetadata>
{
public:
    Metadata()
        : m_record(ItemCollection()),
          m_host(PublishingHost::Make(m_record, [](int, const auto &, const auto &) {}))
    {
    }

    FirstWriting First = FirstWriting::Succeeds;
    int Writings = 0;

    STDMETHODIMP ReadImageMetadata(LPCWSTR path, INT32 reserved, INT32 longEdge, IWICBitmapSource **source,
                                   INT32 flags, ItemRecord *record) noexcept override
    {
        return m_host->ReadImageMetadata(path, reserved, longEdge, source, flags, record);
    }
    STDMETHODIMP WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32 reserved, INT32 one, ItemRecord *record,
                                    INT32 copyright, INT32 exif, INT32 xmp, INT32 gps, INT32 iptc, INT32 anyGroup,
                                    INT32 processed) noexcept override
    {
        const bool isFirst = ++Writings == 1;
        if (isFirst && First == FirstWriting::FailsBefore)
        {
            return E_FAIL;
        }
        const HRESULT result = m_host->WriteImageMetadata(writer, reserved, one, record, copyright, exif, xmp, gps,
                                                          iptc, anyGroup, processed);
        return isFirst && First == FirstWriting::FailsAfter ? E_FAIL : result;
    }

private:
    RunRecord m_record;
    ComPtr<PublishingHost> m_host;
};

std::string NameOf(unsigned groups)
{
    const struct
    {
        unsigned bit;
        const char *name;
    } names[] = {{Copyright, " copyright"}, {Exif, " exif"}, {Xmp, " xmp"}, {Gps, " gps"}, {Iptc, " iptc"}};
    std::string text = "on:";
    for (const auto &name : names)
    {
        text += groups & name.bit ? name.name : "";
    }
    return text;
}

bool MayLeave(const MarkedValue &value, unsigned groups)
{
    return std::any_of(value.leave.begin(), value.leave.end(),
                       [&](unsigned needed) { return (groups & needed) == needed; });
}

const MarkedValue &ValueAt(const char *place)
{
    const auto found = std::find_if(MarkedValues().begin(), MarkedValues().end(),
                                    [&](const MarkedValue &marked) { return marked.place == place; });
    return *found;
}

class PrivacyMatrix : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute); // the odd blocks are meant to be odd
    }

    void SetUp() override { UsePicture(Contents::JpegWithEverything); }

    void UsePicture(Contents contents)
    {
        Source = contents;
        Marked = MakeMarkedPicture(contents);
        Path = Folder.Write(std::string("p") + ExtensionOf(contents), Marked);
    }

    // The picture as it would be sent; empty after a failure, which fails the test.
    std::string Send(UINT32 mode, unsigned groups, FirstWriting first)
    {
        const auto metadata = Metadata::Make();
        metadata->First = first;
        CallRecord record;
        const auto host = FakeHost::Make(record);
        host->OtherMetadata = metadata;
        UploadOptions options = SingleUpload::Options(mode);
        options.WriteCopyright = (groups & Copyright) != 0;
        options.WriteEXIF = (groups & Exif) != 0;
        options.WriteXMP = (groups & Xmp) != 0;
        options.WriteGPS = (groups & Gps) != 0;
        options.WriteIPTC = (groups & Iptc) != 0;
        Web.Clear();
        Web.AnswerWith(S_OK, nullptr);
        EXPECT_EQ(SingleUpload().Run(host.Get(), Path, options), S_OK) << NameOf(groups);
        return Web.FileParts.empty() ? std::string() : Web.FileParts.back();
    }

    // A line for each value that was published and shouldn't have been.
    static void ExpectNothingSwitchedOff(const std::string &sent, unsigned groups)
    {
        Lines leaks;
        for (const MarkedValue &value : MarkedValues())
        {
            const size_t found = FindValue(sent, value);
            if (found != std::string::npos && !MayLeave(value, groups))
            {
                leaks.push_back(value.place + " at " + std::to_string(found));
            }
        }
        EXPECT_THAT(leaks, IsEmpty());
    }

    // What another program reads, field by field: what the host keeps of the groups that are on, the first source
    // of each text, and nothing of the others.
    void ExpectFields(const TagValues &tags, unsigned groups, UINT32 mode) const
    {
        // The value's place in a file with all blocks, and in one with EXIF alone.
        static const struct
        {
            unsigned group;
            const char *key;
            const char *place;
            const char *placeInExif;
        } fields[] = {
            {Copyright, "IFD0:Artist", "Xmp.dc.creator", "Exif.Image.Artist"},
            {Copyright, "IFD0:Copyright", "Xmp.dc.rights", "Exif.Image.Copyright"},
            {Copyright, "ExifIFD:UserComment", "Exif.Photo.UserComment", "Exif.Photo.UserComment"},
            {Copyright, "XMP-dc:Creator", "Xmp.dc.creator", "Exif.Image.Artist"},
            {Copyright, "XMP-dc:Rights", "Xmp.dc.rights", "Exif.Image.Copyright"},
            {Copyright, "IPTC:By-line", "Xmp.dc.creator", "Exif.Image.Artist"},
            {Copyright, "IPTC:CopyrightNotice", "Xmp.dc.rights", "Exif.Image.Copyright"},
            {Exif, "IFD0:Model", "Exif.Image.Model", "Exif.Image.Model"},
            {Exif, "ExifIFD:LensModel", "Exif.Photo.LensModel", "Exif.Photo.LensModel"},
            {Exif, "ExifIFD:DateTimeOriginal", "Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeOriginal"},
            {Xmp, "XMP-xmp:Label", "Xmp.xmp.Label", nullptr},
            {Gps, "GPS:GPSMapDatum", "Exif.GPSInfo.GPSMapDatum", "Exif.GPSInfo.GPSMapDatum"},
            {Gps, "GPS:GPSDateStamp", "Exif.GPSInfo.GPSDateStamp", "Exif.GPSInfo.GPSDateStamp"},
            {Iptc, "IFD0:ImageDescription", "Xmp.dc.description", "Exif.Image.ImageDescription"},
            {Iptc, "IPTC:Caption-Abstract", "Xmp.dc.description", "Exif.Image.ImageDescription"},
            {Iptc, "IPTC:ObjectName", "Xmp.dc.title", "Exif.Image.XPTitle"},
            {Iptc, "IPTC:City", "Xmp.photoshop.City", nullptr},
            {Iptc, "XMP-dc:Description", "Xmp.dc.description", "Exif.Image.ImageDescription"},
            {Iptc, "XMP-dc:Title", "Xmp.dc.title", "Exif.Image.XPTitle"},
            {Iptc, "XMP-photoshop:City", "Xmp.photoshop.City", nullptr},
        };
        for (const auto &field : fields)
        {
            const char *const place = Source == Contents::JpegWithExifAlone ? field.placeInExif : field.place;
            if ((groups & field.group) && place != nullptr)
            {
                EXPECT_THAT(tags, Contains(Pair(field.key, ValueAt(place).bytes)));
            }
            else
            {
                EXPECT_THAT(tags, Not(Contains(testing::Key(field.key))));
            }
        }
        EXPECT_EQ(tags.count("GPS:GPSLatitude") != 0, (groups & Gps) != 0);
        for (const auto &[key, value] : tags)
        {
            EXPECT_TRUE((groups & Gps) || key.find("GPS") == key.npos) << key;
            EXPECT_THAT(key, Not(HasSubstr("Thumbnail")));
        }
        EXPECT_EQ(tags.count("Warning") + tags.count("Error"), 0u);
        // How pixels lie and look is told of pixels that weren't changed, and of no others.
        const bool isIntact = mode == SendPixelsIntact;
        const auto told = [&](const char *key) { return tags.contains(key) ? tags.at(key) : "1"; };
        EXPECT_EQ(told("IFD0:Orientation"), isIntact ? "6" : "1");
        EXPECT_EQ(told("ExifIFD:ColorSpace"), isIntact ? "65535" : "1");
        EXPECT_EQ(tags.contains("InteropIFD:InteropIndex"), isIntact);
    }

    void SendEveryChoice(UINT32 mode, FirstWriting first)
    {
        std::vector<Octets> files;
        for (unsigned groups = 0; groups <= AllGroups; ++groups)
        {
            SCOPED_TRACE(NameOf(groups));
            const std::string sent = Send(mode, groups, first);
            ExpectNothingSwitchedOff(sent, groups);
            files.emplace_back(sent.begin(), sent.end());
        }
        const auto tags = ReadWithExiftool(files);
        for (unsigned groups = 0; groups <= AllGroups; ++groups)
        {
            SCOPED_TRACE(NameOf(groups));
            ExpectFields(tags[groups], groups, mode);
        }
    }

    Contents Source = Contents::JpegWithEverything;
    std::string Marked;
    TemporaryFolder Folder;
    std::filesystem::path Path;
    SettingsKey Key;
    FakeWebComponents Web;
};
} // namespace

// Or the search would prove nothing.
TEST_F(PrivacyMatrix, EveryValueIsFoundInThePictureOnDisk)
{
    const std::string png = MakeMarkedPicture(Contents::Png);
    for (const MarkedValue &value : MarkedValues())
    {
        if (value.isText)
        {
            const bool isOfPng = value.place.starts_with("PNG");
            EXPECT_NE(FindValue(isOfPng ? png : Marked, value), std::string::npos) << value.place;
        }
    }
    for (const Contents contents : {Contents::JpegWithEverything, Contents::JpegWithExifAlone})
    {
        UsePicture(contents);
        const auto isRationalHere = [&](const MarkedValue &value) {
            return !value.isText && FindValue(Marked, value) != std::string::npos;
        };
        EXPECT_EQ(std::ranges::count_if(MarkedValues(), isRationalHere), 1) << "in one byte order";
        EXPECT_EQ(Marked.find("Exif\0\0MM"s) != std::string::npos, contents == Contents::JpegWithExifAlone);
    }
    UsePicture(Contents::JpegWithEverything);
    const TagValues tags = ReadWithExiftool(Octets(Marked.begin(), Marked.end()));
    for (const char *key :
         {"GPS:GPSLatitude", "XMP-exif:GPSLatitude", "Panasonic:City", "IFD1:ThumbnailOffset", "IPTC:By-line"})
    {
        EXPECT_THAT(tags, Contains(testing::Key(key)));
    }
}

TEST_F(PrivacyMatrix, IntactPixels)
{
    for (const Contents contents : {Contents::JpegWithEverything, Contents::JpegWithExifAlone})
    {
        UsePicture(contents);
        SendEveryChoice(SendPixelsIntact, FirstWriting::Succeeds);
    }
    // What can't be looked into goes with everything.
    UsePicture(Contents::JpegWithEverything);
    const std::string sent = Send(SendPixelsIntact, AllGroups, FirstWriting::Succeeds);
    for (const char *place : {"Exif.Panasonic.InternalSerialNumber", "APP6, telemetry of an action camera",
                              "APP12, picture information"})
    {
        EXPECT_NE(FindValue(sent, ValueAt(place)), std::string::npos) << place;
    }
    // A maker note's offsets count from the block's start, so it stays where it was, though all else moves.
    const auto placeOfNote = [](const std::string &file) {
        return file.find("qzMakerSerial") - file.find("Exif\0\0II*\0"s);
    };
    EXPECT_EQ(placeOfNote(sent), placeOfNote(Marked));
    const auto tags = ReadWithExiftool(Octets(sent.begin(), sent.end()));
    EXPECT_EQ(tags.at("IFD0:XResolution"), tags.at("JFIF:XResolution"));
}

TEST_F(PrivacyMatrix, IntactPixelsWithoutBlocksAfterAFailure)
{
    SendEveryChoice(SendPixelsIntact, FirstWriting::FailsBefore);
    SendEveryChoice(SendPixelsIntact, FirstWriting::FailsAfter);
}

TEST_F(PrivacyMatrix, ProcessedPixels)
{
    for (const Contents contents : {Contents::JpegWithEverything, Contents::JpegWithExifAlone, Contents::Tiff,
                                    Contents::WebP, Contents::Heif, Contents::Png, Contents::Raw})
    {
        SCOPED_TRACE(ExtensionOf(contents));
        UsePicture(contents);
        SendEveryChoice(SendProcessed, FirstWriting::Succeeds);
    }
}
