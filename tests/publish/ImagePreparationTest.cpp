// The making of new JPEGs, through the upload that needs them.
#include "com/ModuleLocks.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/doubles/SingleUpload.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

namespace
{
constexpr HRESULT BadHeader = 0x88982F61;
constexpr HRESULT BadImage = 0x88982F60;
constexpr HRESULT UnexpectedType = 0x88982F8E;
constexpr HRESULT SomeFailure = 0x80031234;

class ImagePreparation : public testing::Test
{
protected:
    void SetUp() override
    {
        Fixture.AddItem("p", TEXT("jpg"), JpegBytes);
        Fixture.Host->Metadata->HasGroups = true;
        Fixture.Host->Metadata->ExifComment = TEXT("A comment");
    }

    // The result of one upload of the picture p.jpg. All objects created for it must be gone afterwards, and
    // it must have been sent if and only if the upload succeeds.
    HRESULT Upload(const UploadOptions &options)
    {
        Fixture.Web.Clear();
        Fixture.Web.AnswerWith(S_OK, nullptr);
        const long locks = ModuleLocks::Read();
        const HRESULT result = Single.Run(Fixture.Host.Get(), Fixture.PathOf("p.jpg"), options);
        EXPECT_EQ(ModuleLocks::Read(), locks) << "objects are left over";
        EXPECT_EQ(Fixture.Web.CallsOf("UploadRequest").size(), SUCCEEDED(result) ? 1u : 0u);
        if (SUCCEEDED(result))
        {
            EXPECT_THAT(Fixture.Web.FileParts, ElementsAre(FakeImaging::EncodedBytes));
        }
        else
        {
            Fixture.Web.TakeAnswer(ComPtr<IUnknown>().Put());
            EXPECT_THAT(Fixture.Web.Operations(), IsEmpty());
        }
        return result;
    }

    HRESULT Upload(UINT32 mode) { return Upload(SingleUpload::Options(mode)); }

    CallRecord &Calls() { return Fixture.Imaging.Calls; }

    PublishFixture Fixture;
    SingleUpload Single;
};

const Lines IntactPass{
    "CreateDecoder jpeg Microsoft",
    "Decoder.Initialize 0",
    "Decoder.GetFrame 0",
    "ReadImageMetadata only",
    "CreateEncoder jpeg Microsoft",
    "Encoder.Initialize 2",
    "Encoder.CreateNewFrame",
    "Frame.Initialize without options",
    "Source.GetSize",
    "Frame.SetSize 800 600",
    "Source.GetResolution",
    "Frame.SetResolution 96 96",
    "Frame.SetPixelFormat 24bppBGR",
    "CreateColorContext",
    "CreateDecoder jpeg other",
    "Other decoder.Initialize 0",
    "Other decoder.GetFrame 0",
    "Other source.GetColorContexts 1",
    "Frame.SetColorContexts 1",
    "Source.BlockReader",
    "Frame.BlockWriter",
    "Frame.InitializeFromBlockReader",
    "Frame.GetMetadataQueryWriter",
    "Metadata.Remove /xmp",
    "Metadata.Remove /app13",
    "WriteImageMetadata 1111110 800x600 at 96x96 copyright exif xmp gps iptc",
    "Frame.WriteSource frame",
    "Frame.Commit",
    "Encoder.Commit",
};

const Lines ProcessedPass{
    "ReadImageMetadata with picture of 1024",
    "CreateEncoder jpeg Microsoft",
    "Encoder.Initialize 2",
    "Encoder.CreateNewFrame with options",
    "Options.Write ImageQuality 1 VT_R4=3F59999A, JpegYCrCbSubsampling 1 VT_UI1=3",
    "Frame.Initialize with options",
    "Source.GetSize",
    "Frame.SetSize 800 600",
    "Frame.SetResolution 300 300",
    "Frame.SetPixelFormat 24bppBGR",
    "Frame.GetMetadataQueryWriter",
    "WriteImageMetadata 1111111 800x600 at 300x300 copyright exif xmp gps iptc",
    "Metadata.Set /app1/ifd/exif/{ushort=41985} VT_UI2=1",
    "Frame.WriteSource picture",
    "Frame.Commit",
    "Encoder.Commit",
};

Lines AfterFactory(const Lines &pass)
{
    Lines all{"CreateFactory"};
    all.insert(all.end(), pass.begin(), pass.end());
    return all;
}
} // namespace

TEST_F(ImagePreparation, KeepsThePixelsOfAJpeg)
{
    EXPECT_EQ(Upload(SendPixelsIntact), S_OK);
    EXPECT_THAT(Calls().Lines(), ElementsAreArray(AfterFactory(IntactPass)));
    EXPECT_THAT(Single.Pauses, IsEmpty());

    // Size and economy apply to processed pictures alone.
    Calls().Clear();
    UploadOptions options = SingleUpload::Options(SendPixelsIntact);
    options.Minimize = true;
    options.LongEdgePixels = 240;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().Lines(), ElementsAreArray(AfterFactory(IntactPass)));
}

TEST_F(ImagePreparation, WritesThePictureThatTheHostProcessed)
{
    UploadOptions options = SingleUpload::Options(SendProcessed);
    options.LongEdgePixels = 1024;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().Lines(), ElementsAreArray(AfterFactory(ProcessedPass)));

    Calls().Clear();
    options.Minimize = true;
    options.LongEdgePixels = 0;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().LinesOf("ReadImageMetadata "), ElementsAre("with picture of 0"));
    EXPECT_THAT(Calls().LinesOf("Options.Write "),
                ElementsAre("ImageQuality 1 VT_R4=3F400000, JpegYCrCbSubsampling 1 VT_UI1=1"));
    EXPECT_THAT(Calls().LinesOf("Frame.SetResolution "), ElementsAre("96 96"));
}

TEST_F(ImagePreparation, TakesNoOtherFileForAJpeg)
{
    for (const std::string_view content : {std::string_view("II*\0 a TIFF", 11), std::string_view()})
    {
        Calls().Clear();
        Fixture.Host->Items.clear();
        Fixture.AddItem("p", TEXT("jpg"), content);
        EXPECT_EQ(Upload(SendPixelsIntact), BadHeader);
        EXPECT_EQ(Calls().Lines().back(), "Decoder.Initialize 0");
    }
    std::filesystem::remove(Fixture.PathOf("p.jpg"));
    Calls().Clear();
    EXPECT_EQ(Upload(SendPixelsIntact), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(Calls().Lines(), ElementsAre("CreateFactory"));
}

// A host that returns success without a picture.
TEST_F(ImagePreparation, NeedsTheProcessedPicture)
{
    Fixture.Host->Metadata->Picture = nullptr;
    EXPECT_EQ(Upload(SendProcessed), E_UNEXPECTED);
}

TEST_F(ImagePreparation, TakesTheProfileFromWhereItIs)
{
    const char *const opened = "Other decoder.Initialize";
    const struct
    {
        Lines failing;
        UINT otherCount, ownCount;
        Lines asked;  // frames that are asked for their profile
        size_t given; // profiles given to the encoder, the refused one included
    } cases[] = {
        {{}, 1, 1, {"Other source"}, 1},
        {{}, 2, 1, {"Other source"}, 1},
        {{}, 0, 1, {"Other source"}, 0},
        {{"CreateColorContext"}, 1, 1, {}, 0},
        {{opened}, 1, 1, {"Source"}, 1},
        {{opened}, 1, 0, {"Source"}, 0},
        {{"Other decoder.GetFrame"}, 1, 1, {"Source"}, 1},
        {{"Other source.GetColorContexts"}, 1, 1, {"Other source", "Source"}, 1},
        {{"Frame.SetColorContexts"}, 1, 1, {"Other source", "Source"}, 2},
        // The file is gone when it is opened a second time.
        {{"the file"}, 1, 1, {"Source"}, 1},
        // A failure of the fallback is ignored like all others.
        {{opened, "Source.GetColorContexts"}, 1, 1, {"Source"}, 0},
        {{opened, "Frame.SetColorContexts"}, 1, 1, {"Source"}, 1},
    };
    for (const auto &c : cases)
    {
        const auto number = &c - cases;
        Fixture.AddItem("p", TEXT("jpg"), JpegBytes);
        Fixture.Imaging.OtherProfileCount = c.otherCount;
        Fixture.Imaging.ProfileCount = c.ownCount;
        Fixture.Imaging.HasBlocks = number % 2 == 0;
        Calls().Clear();
        for (const std::string &failing : c.failing)
        {
            Calls().FailOperation(failing, SomeFailure);
        }
        Calls().OnCall = [&](const std::string &call) {
            if (call == "CreateColorContext" && c.failing == Lines{"the file"})
            {
                std::filesystem::remove(Fixture.PathOf("p.jpg"));
            }
        };
        EXPECT_EQ(Upload(SendPixelsIntact), S_OK) << number;
        Lines asked;
        for (const std::string &call : Calls().Operations())
        {
            if (call.ends_with("ource.GetColorContexts"))
            {
                asked.push_back(call.substr(0, call.find('.')));
            }
        }
        EXPECT_EQ(asked, c.asked) << number;
        EXPECT_EQ(Calls().LinesOf("Frame.SetColorContexts "), Lines(c.given, "1")) << number;
    }
}

// Passes by their ends: B the pixels read as a bad picture, T metadata of an unexpected type, E another failure, M the
// host can't write the metadata, and "." all is well. A picture that another program may still be writing is waited
// for; a metadata failure costs the blocks and no wait, and leaves the count of waits alone.
TEST_F(ImagePreparation, TriesAgainWhereThatMayHelp)
{
    const struct
    {
        UINT32 mode;
        const char *passes;
        std::vector<DWORD> pauses;
        size_t copies; // passes that copy the source's blocks
    } cases[] = {
        {SendPixelsIntact, "E", {}, 1},
        {SendPixelsIntact, "B.", {100}, 2},
        {SendPixelsIntact, "BBB.", {100, 200, 300}, 4},
        {SendPixelsIntact, "BBBB", {100, 200, 300}, 4},
        {SendProcessed, "B.", {100}, 0},
        {SendProcessed, "BBBB", {100, 200, 300}, 0},
        {SendPixelsIntact, "M.", {}, 1},
        {SendPixelsIntact, "MM", {}, 1},
        {SendPixelsIntact, "T.", {}, 1},
        {SendPixelsIntact, "TT", {}, 1},
        {SendProcessed, "M", {}, 0},
        {SendProcessed, "T", {}, 0},
        {SendPixelsIntact, "BMBM", {100, 200}, 2},
        {SendPixelsIntact, "BBTBT", {100, 200, 100}, 3},
    };
    const std::map<char, HRESULT> codes{
        {'B', BadImage}, {'T', UnexpectedType}, {'E', SomeFailure}, {'M', SomeFailure}, {'.', S_OK}};
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.passes);
        const std::string passes = c.passes;
        Calls().Clear();
        size_t writings = 0;
        for (size_t pass = 1; pass <= passes.size(); ++pass)
        {
            const char end = passes[pass - 1];
            writings += end == 'M' ? 0 : 1;
            Calls().FailOperation(end == 'M' ? "WriteImageMetadata" : "Frame.WriteSource", codes.at(end),
                                  end == 'M' ? pass : writings);
        }
        UploadOptions options = SingleUpload::Options(c.mode);
        options.WriteGPS = false;
        EXPECT_EQ(Upload(options), codes.at(passes.back()));
        EXPECT_EQ(Single.Pauses, c.pauses);
        EXPECT_EQ(Calls().CallsOf("CreateFactory").size(), 1u);
        EXPECT_EQ(Calls().CallsOf("ReadImageMetadata").size(), passes.size());
        EXPECT_EQ(Calls().CallsOf("Frame.BlockWriter").size(), c.copies);
        EXPECT_EQ(Calls().CallsOf("Frame.InitializeFromBlockReader").size(), c.copies);
        // What is off is taken out in each of them.
        const bool isIntact = c.mode == SendPixelsIntact;
        EXPECT_EQ(Calls().CallsOf("Metadata.Remove").size(), isIntact ? 2 * passes.size() : 0u);
        EXPECT_THAT(
            Calls().LinesOf("WriteImageMetadata "),
            testing::AllOf(testing::SizeIs(passes.size()),
                           testing::Each(isIntact ? "1111110 800x600 at 96x96 copyright exif xmp iptc"
                                                  : "1110111 800x600 at 96x96 copyright exif xmp gps iptc")));
    }
}

TEST_F(ImagePreparation, BlanksEachGroupThatIsOff)
{
    const struct
    {
        UINT32 ConversionSettings::*group;
        const char *intact;
        const char *processed;
    } cases[] = {
        {&ConversionSettings::WriteCopyright, "1111110 800x600 at 96x96 exif xmp gps iptc", "01111"},
        {&ConversionSettings::WriteEXIF, "1111110 800x600 at 96x96 copyright xmp gps iptc", "10111"},
        {&ConversionSettings::WriteXMP, "1111110 800x600 at 96x96 copyright exif gps iptc", "11011"},
        {&ConversionSettings::WriteGPS, "1111110 800x600 at 96x96 copyright exif xmp iptc", "11101"},
        {&ConversionSettings::WriteIPTC, "1111110 800x600 at 96x96 copyright exif xmp gps", "11110"},
    };
    for (const auto &c : cases)
    {
        Calls().Clear();
        UploadOptions options = SingleUpload::Options(SendPixelsIntact);
        options.*c.group = false;
        EXPECT_EQ(Upload(options), S_OK);
        options.Mode = SendProcessed;
        EXPECT_EQ(Upload(options), S_OK);
        // For a processed picture the flags alone decide.
        EXPECT_THAT(
            Calls().LinesOf("WriteImageMetadata "),
            ElementsAre(c.intact, std::string(c.processed) + "11 800x600 at 96x96 copyright exif xmp gps iptc"));
    }

    // All off, and one alone on: only then is the picture marked as processed.
    UploadOptions options;
    options.Mode = SendPixelsIntact;
    Calls().Clear();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().LinesOf("WriteImageMetadata "), ElementsAre("1111100 800x600 at 96x96"));
    EXPECT_EQ(Calls().CallsOf("Frame.InitializeFromBlockReader").size(), 1u);
    EXPECT_THAT(Fixture.Web.CallsOf("UploadRequest")[0].Arguments[5],
                testing::HasSubstr("&description=A comment&"))
        << "the form keeps its words";

    options.Mode = SendProcessed;
    Calls().Clear();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().LinesOf("WriteImageMetadata "),
                ElementsAre("0000001 800x600 at 96x96 copyright exif xmp gps iptc"));
    EXPECT_THAT(Calls().CallsOf("Metadata.Set"), IsEmpty());
    options.WriteGPS = true;
    Calls().Clear();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().LinesOf("WriteImageMetadata "),
                ElementsAre("0001011 800x600 at 96x96 copyright exif xmp gps iptc"));
    EXPECT_EQ(Calls().CallsOf("Metadata.Set").size(), 1u);
}
