#include "host/PublishingHost.h"

#include "com/BstrOwner.h"
#include "publish/ItemRecord.h"
#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "host/FileNames.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <iterator>

using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::Pair;
using namespace std::string_literals;

namespace
{
enum Group
{
    Copyright = 1,
    Exif = 2,
    Xmp = 4,
    Gps = 8,
    Iptc = 16,
    All = 31
};

// Every value that belongs to a group holds that group's word.
const char *const Tags =
    "-IFD0:Artist='secretcopy Artist' -IFD0:Copyright='secretcopy Owner' -ExifIFD:UserComment='secretcopy note' "
    "-XMP-dc:Creator='secretcopy Artist' -XMP-dc:Rights='secretcopy Owner' -IPTC:By-line='secretcopy Artist' "
    "-IPTC:CopyrightNotice='secretcopy Owner' -XMP-photoshop:Credit='secretcopy Agency' -Comment='secretcopy "
    "said' "
    "-IFD0:XPAuthor='secretcopy Artist' -ExifIFD:OwnerName='secretcopy Owner' "
    "-IFD0:Make=secretexif -IFD0:Model=secretexif -ExifIFD:LensModel='secretexif lens' -ExifIFD:FNumber=4 "
    "-ExifIFD:DateTimeOriginal='2024:05:06 07:08:09' -ExifIFD:ISO=200 "
    "-XMP-xmp:Rating=4 -XMP-xmp:Label='secretxmp Red' -XMP-photoshop:Urgency=2 -IFD0:Rating=4 "
    "-GPSLatitude=49.5 -GPSLatitudeRef=N -GPSLongitude=11.25 -GPSLongitudeRef=E -GPSImgDirection=77 "
    "-GPSDateStamp='2024:05:06' -XMP-exif:GPSLatitude=49.5 -XMP-exif:GPSLongitude=11.25 "
    "-GPSAreaInformation='secretgps area' "
    "-IPTC:Caption-Abstract='secretiptc caption' -IPTC:ObjectName='secretiptc title' -IPTC:Keywords=secretiptc1 "
    "-IPTC:Keywords='secretiptc 2' -IPTC:City=secretiptcCity -XMP-dc:Title='secretiptc title' "
    "-XMP-dc:Description='secretiptc caption' -XMP-dc:Subject=secretiptc1 -XMP-dc:Subject='secretiptc 2' "
    "-XMP-photoshop:City=secretiptcCity -XMP-iptcCore:Location=secretiptcPlace "
    "-IFD0:ImageDescription='secretiptc caption' -IFD0:XPTitle='secretiptc title' -IFD0:XPKeywords=secretiptc1 "
    "-IFD0:Orientation#=6 ";

class MetadataWriting : public testing::Test
{
protected:
    MetadataWriting()
    {
        m_file = m_folder.Path() / "source.jpg";
        MakeSample(m_file, 64, 48, {.dpi = 300});
        MakeSample(m_folder.Path() / "thumb.jpg", 32, 24);
        Exiftool(std::string(Tags) + "'-ThumbnailImage<=" + (m_folder.Path() / "thumb.jpg").string() + "'");
    }

    void Exiftool(const std::string &arguments)
    {
        const std::string command = "exiftool -q -q -m -overwrite_original " + arguments + " " + m_file.string();
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    // What the plug-in does with the groups that are switched off.
    static void Blank(ItemRecord &record, int on)
    {
        if (!(on & Copyright))
        {
            for (BSTR *text : {&record.ExifComment, &record.CopyrightTexts[0], &record.CopyrightTexts[1],
                               &record.CopyrightTexts[2]})
            {
                BstrOwner::Adopt(*text).Reset();
                *text = nullptr;
            }
        }
        if (!(on & Exif))
        {
            record.ExifGroup = 0;
        }
        if (!(on & Xmp))
        {
            std::memset(record.XmpGroup, 0xFF, sizeof(record.XmpGroup));
        }
        if (!(on & Gps))
        {
            record.GpsGroup = 0;
        }
        if (!(on & Iptc))
        {
            ReleaseIptcBlock(record.Iptc);
            record.Iptc.Word10 = 1;
        }
    }

    void Read(ItemRecordOwner &record)
    {
        ASSERT_EQ(
            m_host->ReadImageMetadata(TextOfPath(m_file).c_str(), 0, 0, nullptr, READ_METADATA_ONLY, record.Get()),
            S_OK);
        record.Get()->Widths[0] = record.Get()->Widths[1] = 64;
        record.Get()->Heights[0] = record.Get()->Heights[1] = 48;
    }

    HRESULT Write(IWICMetadataQueryWriter *writer, ItemRecord &record, int on, bool processed)
    {
        const auto flag = [&](int group) { return !processed || (on & group) ? 1 : 0; };
        return m_host->WriteImageMetadata(writer, 0, 1, &record, flag(Copyright), flag(Exif), flag(Xmp), flag(Gps),
                                          flag(Iptc), on != 0, processed);
    }

    Octets Make(int on, bool processed, bool copyBlocks = true)
    {
        const std::string bytes = m_folder.Read("source.jpg");
        Octets result;
        Rewriting rewriting;
        rewriting.CopyBlocks = !processed && copyBlocks;
        rewriting.Edit = [&](IWICMetadataQueryWriter *writer) {
            ItemRecordOwner record;
            Read(record);
            if (!processed)
            {
                writer->RemoveMetadataByName(u"/xmp");
                writer->RemoveMetadataByName(u"/app13");
                Blank(*record.Get(), on);
            }
            EXPECT_EQ(Write(writer, *record.Get(), on, processed), S_OK);
        };
        EXPECT_EQ(Rewrite(Octets(bytes.begin(), bytes.end()), rewriting, result), S_OK);
        return result;
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_file;
    RunRecord m_record{ItemCollection()};
    std::vector<std::string> m_log;
    ComPtr<PublishingHost> m_host = PublishingHost::Make(
        m_record, [this](int, const std::string &, const std::string &message) { m_log.push_back(message); });
};

struct Trace
{
    int group;
    const char *key;
    const char *value;
};

// As exiftool reads them, numbers unconverted.
const Trace Traces[] = {
    {Copyright, "IFD0:Artist", "secretcopy Artist"},
    {Copyright, "IFD0:Copyright", "secretcopy Owner"},
    {Copyright, "ExifIFD:UserComment", "secretcopy note"},
    {Copyright, "XMP-dc:Creator", "secretcopy Artist"},
    {Copyright, "XMP-dc:Rights", "secretcopy Owner"},
    {Copyright, "IPTC:CopyrightNotice", "secretcopy Owner"},
    {Exif, "IFD0:Make", "secretexif"},
    {Exif, "ExifIFD:LensModel", "secretexif lens"},
    {Exif, "ExifIFD:FNumber", "4"},
    {Exif, "ExifIFD:ISO", "200"},
    {Exif, "ExifIFD:DateTimeOriginal", "2024:05:06 07:08:09"},
    {Xmp, "XMP-xmp:Rating", "4"},
    {Xmp, "XMP-xmp:Label", "secretxmp Red"},
    {Xmp, "XMP-photoshop:Urgency", "2"},
    {Gps, "GPS:GPSLatitude", "49.5"},
    {Gps, "GPS:GPSImgDirection", "77"},
    {Gps, "GPS:GPSDateStamp", "2024:05:06"},
    {Iptc, "IPTC:Caption-Abstract", "secretiptc caption"},
    {Iptc, "IPTC:ObjectName", "secretiptc title"},
    {Iptc, "IPTC:City", "secretiptcCity"},
    {Iptc, "XMP-dc:Description", "secretiptc caption"},
    {Iptc, "XMP-photoshop:City", "secretiptcCity"},
    {Iptc, "XMP-iptcCore:Location", "secretiptcPlace"},
    {Iptc, "IFD0:ImageDescription", "secretiptc caption"},
};

const std::pair<int, const char *> Words[] = {
    {Copyright, "secretcopy"}, {Exif, "secretexif"}, {Xmp, "secretxmp"}, {Gps, "secretgps"}, {Iptc, "secretiptc"}};

// Also in UTF-16 of the tags that Windows writes.
bool HoldsWord(const Octets &file, const std::string &word)
{
    std::string wide;
    for (const char c : word)
    {
        wide += c;
        wide += '\0';
    }
    return Holds(file, word) || Holds(file, wide);
}
} // namespace

TEST_F(MetadataWriting, GoesByGroupAndLeavesNothingOfTheOthers)
{
    for (const bool processed : {false, true})
    {
        std::vector<int> choices = {All, 0, Copyright, Exif, Xmp, Gps, Iptc, All - Gps, All - Exif};
        std::vector<Octets> files;
        for (const int on : choices)
        {
            files.push_back(Make(on, processed));
        }
        const auto tags = ReadWithExiftool(files);
        for (size_t i = 0; i < choices.size(); ++i)
        {
            SCOPED_TRACE((processed ? "processed " : "intact ") + std::to_string(choices[i]));
            for (const Trace &trace : Traces)
            {
                if (choices[i] & trace.group)
                {
                    EXPECT_THAT(tags[i], Contains(Pair(trace.key, trace.value)));
                }
                else
                {
                    EXPECT_THAT(tags[i], Not(Contains(Key(trace.key))));
                }
            }
            for (const auto &[group, word] : Words)
            {
                EXPECT_TRUE((choices[i] & group) || !HoldsWord(files[i], word)) << word;
            }
            for (const auto &[key, value] : tags[i])
            {
                EXPECT_TRUE((choices[i] & Gps) || key.find("GPS") == key.npos) << key;
                EXPECT_THAT(key, Not(HasSubstr("Thumbnail")));
            }
            EXPECT_THAT(tags[i], Not(Contains(Key("ExifTool:Warning"))));
            EXPECT_THAT(tags[i], Not(Contains(Key("ExifTool:Error"))));
            const auto turned = tags[i].find("IFD0:Orientation");
            EXPECT_EQ(turned != tags[i].end() ? turned->second : "1", processed ? "1" : "6");
        }
    }
}

TEST_F(MetadataWriting, WithoutCopiedBlocksTheGroupsComeFromTheRecord)
{
    const auto tags = ReadWithExiftool(Make(All - Gps, false, false));
    for (const Trace &trace : Traces)
    {
        if (trace.group != Gps)
        {
            EXPECT_THAT(tags, Contains(Pair(trace.key, trace.value)));
        }
    }
    EXPECT_THAT(tags, Not(Contains(Key("GPS:GPSLatitude"))));
    EXPECT_THAT(tags, Contains(Pair("IFD0:Orientation", "6")));
}

TEST_F(MetadataWriting, APlaceToldInXmpAloneBelongsToGps)
{
    Exiftool("-gps:all= -XMP-exif:GPSLatitude=12.5 -XMP-exif:GPSLongitude=-7.25");
    const auto tags = ReadWithExiftool({Make(All, false), Make(All - Gps, false)});
    EXPECT_THAT(tags[0], Contains(Pair("GPS:GPSLatitude", "12.5")));
    EXPECT_THAT(tags[0], Contains(Pair("GPS:GPSLongitudeRef", "W")));
    for (const auto &[key, value] : tags[1])
    {
        EXPECT_EQ(key.find("GPS"), key.npos) << key;
    }
}

TEST_F(MetadataWriting, SegmentsOfMakersGoWithAllGroupsOrNotAtAll)
{
    std::string bytes = m_folder.Read("source.jpg");
    bytes.insert(2, "\xFF\xEC\0\x10"
                    "Ducky secretpl"s +
                        "\xFF\xEA\0\x0C"
                        "secretmore"s);
    m_folder.Write("source.jpg", bytes);
    EXPECT_TRUE(Holds(Make(All, false), "secretmore"));
    for (const int on : {0, All - Gps, All - Copyright})
    {
        const Octets file = Make(on, false);
        EXPECT_FALSE(Holds(file, "secretpl") || Holds(file, "secretmore")) << on;
    }
}

TEST_F(MetadataWriting, ARemovalThatFailsEndsTheCall)
{
    ItemRecordOwner record;
    Read(record);
    Blank(*record.Get(), All - Gps);
    const std::string bytes = m_folder.Read("source.jpg");
    Rewriting rewriting;
    ComPtr<IWICMetadataQueryWriter> kept;
    rewriting.Edit = [&](IWICMetadataQueryWriter *writer) { kept = ComPtr<IWICMetadataQueryWriter>(writer); };
    Octets result;
    ASSERT_EQ(Rewrite(Octets(bytes.begin(), bytes.end()), rewriting, result), S_OK);
    // The frame is committed, so that nothing can be removed any more.
    EXPECT_LT(Write(kept.Get(), *record.Get(), All, false), 0);
}

TEST_F(MetadataWriting, AnOldRecordWritesNothingOfAnotherPicture)
{
    ItemRecordOwner old;
    Read(old);
    Exiftool("-IFD0:Make=newer -GPSLatitude=1");
    for (int i = 0; i < 8; ++i)
    {
        ItemRecordOwner newer;
        Read(newer);
    }
    const std::string bytes = m_folder.Read("source.jpg");
    Octets result;
    Rewriting rewriting;
    rewriting.CopyBlocks = false;
    rewriting.Edit = [&](IWICMetadataQueryWriter *writer) {
        EXPECT_EQ(Write(writer, *old.Get(), All, true), S_OK);
    };
    ASSERT_EQ(Rewrite(Octets(bytes.begin(), bytes.end()), rewriting, result), S_OK);
    EXPECT_FALSE(Holds(result, "newer"));
    EXPECT_FALSE(Holds(result, "secretexif"));
    EXPECT_TRUE(Holds(result, "secretcopy")) << "the record's own texts are its own";
    EXPECT_THAT(m_log, Contains(HasSubstr("no longer known")));
}

TEST_F(MetadataWriting, APictureComesWithItsRecord)
{
    ItemRecordOwner record;
    ComPtr<IWICBitmapSource> source;
    ASSERT_EQ(m_host->ReadImageMetadata(TextOfPath(m_file).c_str(), 0, 32, source.Put(), READ_METADATA_AND_PICTURE,
                                        record.Get()),
              S_OK);
    UINT width = 0;
    UINT height = 0;
    ASSERT_EQ(source->GetSize(&width, &height), S_OK);
    EXPECT_EQ(width, 24u) << "upright";
    EXPECT_EQ(height, 32u);
    EXPECT_EQ(WideText(record.Get()->CopyrightTexts[1]), u"secretcopy Owner");
    const std::string whole = m_folder.Read("source.jpg");
    m_folder.Write("cut.jpg", whole.substr(0, whole.size() - 300));
    const WideText cut = TextOfPath(m_folder.Path() / "cut.jpg");
    ItemRecordOwner other;
    EXPECT_LT(m_host->ReadImageMetadata(cut.c_str(), 0, 32, source.Put(), READ_METADATA_AND_PICTURE, other.Get()),
              0);
    EXPECT_FALSE(source);
    EXPECT_THAT(m_log, Contains(HasSubstr("cut.jpg is ")));
    EXPECT_EQ(other.Get()->CopyrightTexts[1], nullptr);
}
