// The reader by queries against the one that reads files: both must find the same in a picture's EXIF block, of which
// alone the native imaging component tells.
#include "host/FrameMetadata.h"

#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "host/ImageMetadata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace
{
const char *const Tags =
    "-ExifIFD:UserComment='größer' -IFD0:ImageDescription=Beschreibung -IFD0:Artist=Anna -IFD0:Copyright=mine "
    "-IFD0:Make=Acme -IFD0:Model=X1 -ExifIFD:FNumber=4 "
    "-ExifIFD:ISO=200 -ExifIFD:ExposureTime=1/60 -ExifIFD:LensModel=L -ExifIFD:SubjectArea='1 2 3' "
    "-ExifIFD:ExposureCompensation=-1.5 -ExifIFD:DateTimeOriginal='2024:05:06 07:08:09' -GPSLatitude=49.5 "
    "-GPSLatitudeRef=N -GPSAltitude=12 -GPSDateStamp='2024:05:06' "
    "-IFD0:Rating=4 -IFD0:Orientation#=6 -ExifIFD:ColorSpace#=65535 -InteropIFD:InteropIndex=R03";

// "directory tag type data"
std::vector<std::string> Told(const std::vector<ExifField> &fields)
{
    std::vector<std::string> told;
    for (const ExifField &field : fields)
    {
        std::string line = std::to_string(int(field.directory)) + " " + std::to_string(field.tag) + " " +
                           std::to_string(field.type);
        for (const BYTE byte : field.data)
        {
            line += " " + std::to_string(byte);
        }
        told.push_back(line);
    }
    std::sort(told.begin(), told.end());
    return told;
}
} // namespace

TEST(FrameMetadata, FindsWhatTheReaderOfFilesFinds)
{
    const TemporaryFolder folder;
    const auto file = folder.Path() / "a.jpg";
    MakeSample(file, 32, 24);
    const std::string command = "exiftool -q -q -m -overwrite_original " + std::string(Tags) + " " + file.string();
    ASSERT_EQ(std::system(command.c_str()), 0);
    ImageTexts wanted;
    MetadataSnapshot wantedGroups;
    ASSERT_EQ(ReadMetadata(file, wanted, &wantedGroups), S_OK);

    const std::string bytes = folder.Read("a.jpg");
    ComPtr<IWICBitmapFrameDecode> frame;
    ASSERT_EQ(OpenFrame(Octets(bytes.begin(), bytes.end()), frame), S_OK);
    ComPtr<IWICMetadataQueryReader> reader;
    ASSERT_EQ(frame->GetMetadataQueryReader(reader.Put()), S_OK);
    ImageTexts found;
    MetadataSnapshot groups;
    ReadFrameMetadata(*reader.Get(), found, &groups);

    EXPECT_EQ(found.description, u"Beschreibung");
    EXPECT_EQ(found.description, wanted.description);
    EXPECT_EQ(found.comment, u"größer");
    EXPECT_EQ(found.artist, u"Anna");
    EXPECT_EQ(found.copyright, wanted.copyright);
    EXPECT_EQ(Told(groups.camera), Told(wantedGroups.camera));
    EXPECT_GE(groups.camera.size(), 9u);
    EXPECT_EQ(Told(groups.gps), Told(wantedGroups.gps));
    EXPECT_GE(groups.gps.size(), 4u);
    EXPECT_EQ(groups.orientation, 6);
    EXPECT_TRUE(groups.isAdobeRgb && wantedGroups.isAdobeRgb);
    EXPECT_EQ(groups.rating, 4);
}
