#include "host/PublishingHost.h"

#include "com/BstrOwner.h"
#include "publish/ItemRecord.h"
#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "host/FileNames.h"

#include <exiv2/exiv2.hpp>
#include <gmock/gmock.h>

using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;
using namespace std::string_literals;

namespace
{
const char *const Tags =
    "-IFD0:Artist='secretcopy Artist' -IFD0:Copyright='secretcopy Owner' -IFD0:Model=secretexif "
    "-ExifIFD:DateTimeOriginal='2024:05:06 07:08:09' -GPSLatitude=49.5 -GPSLatitudeRef=N -GPSLongitude=11.25 "
    "-GPSLongitudeRef=E -GPSImgDirection=77 -IFD0:Orientation#=6 ";

class MetadataWriting : public testing::Test
{
protected:
    MetadataWriting()
    {
        m_file = m_folder.Path() / "source.jpg";
        MakeSample(m_file, 64, 48, {.dpi = 300});
        MakeSample(m_folder.Path() / "thumb.jpg", 32, 24);
        Exiftool(std::string(Tags) + "'-ThumbnailImage<=" + (m_folder.Path() / "thumb.jpg").string() + "'",
                 m_file);
    }

    void Read(ItemRecordOwner &record)
    {
        ASSERT_EQ(
            m_host->ReadImageMetadata(TextOfPath(m_file).c_str(), 0, 0, nullptr, READ_METADATA_ONLY, record.Get()),
            S_OK);
        record.Get()->Widths[0] = record.Get()->Widths[1] = 64;
        record.Get()->Heights[0] = record.Get()->Heights[1] = 48;
    }

    // With all groups on.
    Octets Make(ItemRecord &record, bool processed)
    {
        const std::string bytes = m_folder.Read("source.jpg");
        Octets result;
        Rewriting rewriting;
        rewriting.CopyBlocks = !processed;
        rewriting.Edit = [&](IWICMetadataQueryWriter *writer) {
            EXPECT_EQ(
                m_host->WriteImageMetadata(writer, 0, 1, &record, TRUE, TRUE, TRUE, TRUE, TRUE, TRUE, processed),
                S_OK);
        };
        EXPECT_EQ(Rewrite(Octets(bytes.begin(), bytes.end()), rewriting, result), S_OK);
        return result;
    }

    // With all groups on, or as the plug-in blanks that of GPS.
    Octets Make(bool processed, bool gps = true)
    {
        ItemRecordOwner record;
        Read(record);
        record.Get()->GpsGroup = gps ? record.Get()->GpsGroup : UINT16{0};
        return Make(*record.Get(), processed);
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_file;
    RunRecord m_record{ItemCollection()};
    std::vector<std::string> m_log;
    ComPtr<PublishingHost> m_host = PublishingHost::Make(
        m_record, [this](int, const std::string &, const std::string &message) { m_log.push_back(message); });
};
} // namespace

TEST_F(MetadataWriting, FieldsOfEveryTypeArriveAsTheyAre)
{
    const std::string fields[] = {
        "ExifIFD:FNumber=5.6",    "ExifIFD:ExposureCompensation=-1.5", "ExifIFD:ISO=400",
        "GPS:GPSAltitude=12.25",  "ExifIFD:SubjectArea=1 2 3",         "IFD0:Artist=größer",
        "ExifIFD:LensModel=L 漢", "GPS:GPSLatitude=49.5034277777778",  "IFD0:Make=Acme"};
    std::string arguments;
    for (const std::string &field : fields)
    {
        arguments += "'-" + field + "' ";
    }
    Exiftool(arguments + "-IPTC:Keywords=sea -IPTC:Keywords=wind", m_file);
    const auto tags = ReadWithExiftool({Make(false), Make(true)});
    for (const std::string &field : fields)
    {
        const size_t equals = field.find('=');
        for (const TagValues &result : tags)
        {
            EXPECT_THAT(result, Contains(Pair(field.substr(0, equals), field.substr(equals + 1))));
            EXPECT_THAT(result, Contains(Pair("IPTC:Keywords", "[\"sea\",\"wind\"]")));
            EXPECT_THAT(result, Contains(Pair("XMP-dc:Subject", "[\"sea\",\"wind\"]")));
        }
    }
}

TEST_F(MetadataWriting, APlaceToldInXmpAloneBelongsToGps)
{
    Exiftool("-gps:all= -XMP-exif:GPSLatitude=12.5 -XMP-exif:GPSLongitude=-7.25", m_file);
    const auto tags = ReadWithExiftool({Make(false), Make(false, false)});
    EXPECT_THAT(tags[0], Contains(Pair("GPS:GPSLatitude", "12.5")));
    EXPECT_THAT(tags[0], Contains(Pair("GPS:GPSLongitudeRef", "W")));
    for (const auto &[key, value] : tags[1])
    {
        EXPECT_EQ(key.find("GPS"), key.npos) << key;
    }
}

TEST_F(MetadataWriting, WhatHasNoRoomIsLeftOutAndTold)
{
    const std::string letter = "\xE6\xBC\xA2"; // three bytes
    const auto text = [&](size_t letters) {
        std::string words = std::to_string(letters);
        for (size_t i = words.size(); i < letters; ++i)
        {
            words += letter;
        }
        return words;
    };
    const struct
    {
        size_t makerNote;
        std::vector<size_t> letters; // of description, copyright, artist
        const char *leftOut;
    } cases[] = {
        {40000, {100, 100, 100}, nullptr},
        {60000, {2400, 100, 100}, "the camera's maker note."},
        {0, {8001, 100, 100}, "IPTC Caption, XMP dc:description, EXIF description."},
        {30000,
         {7900, 7800, 7700},
         "XMP dc:rights, XMP dc:description, the camera's maker note, EXIF description."},
    };
    for (const auto &c : cases)
    {
        Exiftool("-XMP-dc:Description='" + text(c.letters[0]) + "' -XMP-dc:Rights='" + text(c.letters[1]) +
                     "' -XMP-dc:Creator='" + text(c.letters[2]) + "'",
                 m_file);
        const std::string mark = "secretnote";
        const auto image = Exiv2::ImageFactory::open(m_file.string());
        image->readMetadata();
        const std::string note = mark + std::string(c.makerNote, 'n');
        image->exifData()["Exif.Photo.MakerNote"] =
            Exiv2::DataValue(reinterpret_cast<const Exiv2::byte *>(note.data()), static_cast<long>(note.size()));
        image->writeMetadata();
        for (const bool processed : {false, true})
        {
            SCOPED_TRACE(std::to_string(c.makerNote) + (processed ? " processed" : " intact"));
            m_log.clear();
            const Octets file = Make(processed);
            const auto tags = ReadWithExiftool(file);
            const std::string told = c.leftOut != nullptr ? c.leftOut : "";
            const bool keepsNote = told.find("maker note") == told.npos;
            EXPECT_EQ(Holds(file, mark), keepsNote && !processed);
            const bool keepsText = told.find("EXIF description") == told.npos;
            EXPECT_EQ(Holds(file, text(c.letters[0]) + '\0'), keepsText) << "as EXIF ends a text";
            EXPECT_THAT(tags, Contains(Key("GPS:GPSImgDirection")));
            EXPECT_THAT(tags, Contains(Pair("IFD0:Model", "secretexif")));
            EXPECT_TRUE(Holds(file, text(c.letters[1]) + '\0'));
            if (told.empty() || processed)
            {
                continue;
            }
            ASSERT_FALSE(m_log.empty());
            EXPECT_EQ(m_log.back(), "Some metadata of " + ShownPath(m_file) +
                                        " are too long for the new file and were left out: " + told);
        }
    }
}

TEST_F(MetadataWriting, AnOldRecordWritesNothingOfAnotherPicture)
{
    ItemRecordOwner old;
    Read(old);
    Exiftool("-IFD0:Make=newer -GPSLatitude=1", m_file);
    for (int i = 0; i < 8; ++i)
    {
        ItemRecordOwner newer;
        Read(newer);
    }
    const Octets result = Make(*old.Get(), true);
    EXPECT_FALSE(Holds(result, "newer"));
    EXPECT_FALSE(Holds(result, "secretexif"));
    EXPECT_TRUE(Holds(result, "secretcopy")) << "the record's own texts are its own";
    EXPECT_THAT(m_log, Contains(HasSubstr("no longer known")));
}

TEST_F(MetadataWriting, APictureThatIsDamagedHasNoRecordEither)
{
    const std::string whole = m_folder.Read("source.jpg");
    m_folder.Write("source.jpg", whole.substr(0, whole.size() - 300));
    ItemRecordOwner record;
    ComPtr<IWICBitmapSource> source;
    EXPECT_LT(m_host->ReadImageMetadata(TextOfPath(m_file).c_str(), 0, 32, source.Put(), READ_METADATA_AND_PICTURE,
                                        record.Get()),
              0);
    EXPECT_FALSE(source);
    EXPECT_EQ(record.Get()->CopyrightTexts[1], nullptr);
}
