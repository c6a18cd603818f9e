// The making of new JPEGs, through the upload that needs them.
#include "account/AccountRecord.h"
#include "com/BstrOwner.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "publish/UploadRequest.h"
#include "settings/SettingsStore.h"
#include "tests/doubles/PublishFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>

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

class Progress final : public ComObject<Progress, IUploadProgressCallback>
{
public:
    STDMETHODIMP OnUploadProgress(UINT32, UINT32, UINT32) noexcept override { return S_OK; }
};

class ImagePreparation : public testing::Test
{
protected:
    void SetUp() override
    {
        Fixture.AddItem("p", TEXT("jpg"), JpegBytes);
        Fixture.Host->Metadata->HasGroups = true;
        Fixture.Host->Metadata->ExifComment = TEXT("A comment");
        Account.OAuthToken = BstrOwner(TEXT("t"));
        Account.OAuthTokenSecret = BstrOwner(TEXT("s"));
    }

    static UploadOptions Options(UINT32 mode)
    {
        UploadOptions options;
        options.Mode = mode;
        options.WriteCopyright = options.WriteEXIF = options.WriteXMP = options.WriteGPS = options.WriteIPTC =
            true;
        options.PrintDpi = 300;
        return options;
    }

    // The result of one upload of the picture p.jpg. All objects created for it must be gone afterwards, and
    // it must have been sent if and only if the upload succeeds.
    HRESULT Upload(const UploadOptions &options)
    {
        Pauses.clear();
        Fixture.Web.ForgetCalls();
        Fixture.Web.FileParts.clear();
        Fixture.Web.AnswerWith(S_OK, nullptr);
        const long locks = ModuleLocks::Read();
        const RunContext run{Fixture.Host.Get(),
                             nullptr,
                             Callback.Get(),
                             Account,
                             Version,
                             Settings,
                             Statistics,
                             Windows,
                             Cancel,
                             SystemTicks,
                             [this](DWORD milliseconds) { Pauses.push_back(milliseconds); }};
        ComPtr<IUnknown> reply;
        const std::string path = Fixture.PathOf("p.jpg");
        const HRESULT result =
            UploadOneFile(run, WideText(path.begin(), path.end()).c_str(), TEXT("p.jpg"), reply, options);
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

    HRESULT Upload(UINT32 mode) { return Upload(Options(mode)); }

    CallScript &Calls() { return Fixture.Imaging.Calls; }

    PublishFixture Fixture;
    AccountRecord Account;
    VersionBlock Version = VersionBlock::OfThisModule();
    SettingsBlock Settings;
    PublishStatistics Statistics;
    ProgressWindows Windows;
    CancelFlags Cancel;
    ComPtr<Progress> Callback = Progress::Make();
    std::vector<DWORD> Pauses;
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
    EXPECT_THAT(Calls().Calls(), ElementsAreArray(AfterFactory(IntactPass)));
    EXPECT_THAT(Pauses, IsEmpty());

    // Size and economy apply to processed pictures alone.
    Calls().Reset();
    UploadOptions options = Options(SendPixelsIntact);
    options.Minimize = true;
    options.LongEdgePixels = 240;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().Calls(), ElementsAreArray(AfterFactory(IntactPass)));
}

TEST_F(ImagePreparation, WritesThePictureThatTheHostProcessed)
{
    UploadOptions options = Options(SendProcessed);
    options.LongEdgePixels = 1024;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().Calls(), ElementsAreArray(AfterFactory(ProcessedPass)));

    Calls().Reset();
    options.Minimize = true;
    options.LongEdgePixels = 0;
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().DetailsOf("ReadImageMetadata"), ElementsAre("with picture of 0"));
    EXPECT_THAT(Calls().DetailsOf("Options.Write"),
                ElementsAre("ImageQuality 1 VT_R4=3F400000, JpegYCrCbSubsampling 1 VT_UI1=1"));
    EXPECT_THAT(Calls().DetailsOf("Frame.SetResolution"), ElementsAre("96 96"));
}

// Every call of a pass fails once: most failures end the upload at once, some cost only the call's own effect.
TEST_F(ImagePreparation, EndsAtTheFirstFailureThatMatters)
{
    enum Consequence
    {
        Ends,
        IsPassedOver,
        StartsAPassWithoutBlocks
    };
    const std::map<std::string, Consequence> intact{
        {"CreateColorContext", IsPassedOver},
        {"CreateDecoder jpeg other", IsPassedOver},
        {"Other decoder.Initialize 0", IsPassedOver},
        {"Other decoder.GetFrame 0", IsPassedOver},
        {"Other source.GetColorContexts 1", IsPassedOver},
        {"Frame.SetColorContexts 1", IsPassedOver},
        {"Source.BlockReader", IsPassedOver},
        {"Frame.InitializeFromBlockReader", IsPassedOver},
        {"Metadata.Remove /xmp", IsPassedOver},
        {"Metadata.Remove /app13", IsPassedOver},
        {"WriteImageMetadata 1111110 800x600 at 96x96 copyright exif xmp gps iptc", StartsAPassWithoutBlocks},
    };
    const std::map<std::string, Consequence> processed{
        {"Metadata.Set /app1/ifd/exif/{ushort=41985} VT_UI2=1", IsPassedOver},
    };
    for (const auto &[mode, calls, exceptions] :
         {std::tuple(SendPixelsIntact, AfterFactory(IntactPass), intact),
          std::tuple(SendProcessed, AfterFactory(ProcessedPass), processed)})
    {
        UploadOptions options = Options(mode);
        options.LongEdgePixels = mode == SendProcessed ? 1024 : 0;
        for (size_t number = 1; number <= calls.size(); ++number)
        {
            const std::string &call = calls[number - 1];
            const auto exception = exceptions.find(call);
            const Consequence consequence = exception == exceptions.end() ? Ends : exception->second;
            Calls().Reset();
            Calls().FailCall(number, SomeFailure);
            EXPECT_EQ(Upload(options), consequence == Ends ? SomeFailure : S_OK) << call;
            Lines made = Calls().Calls();
            ASSERT_GE(made.size(), number) << call;
            EXPECT_EQ(made[number - 1], call);
            EXPECT_THAT(Pauses, IsEmpty()) << call;
            if (consequence == Ends)
            {
                EXPECT_EQ(made.size(), number) << call << " is not the last call";
                continue;
            }
            made.erase(made.begin(), made.begin() + static_cast<ptrdiff_t>(number));
            EXPECT_EQ(made.back(), "Encoder.Commit") << call;
            const bool isNewPass = std::ranges::count(made, "CreateEncoder jpeg Microsoft") != 0;
            EXPECT_EQ(isNewPass, consequence == StartsAPassWithoutBlocks) << call;
        }
    }
}

TEST_F(ImagePreparation, TakesNoOtherFileForAJpeg)
{
    for (const std::string_view content : {std::string_view("II*\0 a TIFF", 11), std::string_view()})
    {
        Calls().Reset();
        Fixture.Host->Items.clear();
        Fixture.AddItem("p", TEXT("jpg"), content);
        EXPECT_EQ(Upload(SendPixelsIntact), BadHeader);
        EXPECT_EQ(Calls().Calls().back(), "Decoder.Initialize 0");
    }
    std::filesystem::remove(Fixture.PathOf("p.jpg"));
    Calls().Reset();
    EXPECT_EQ(Upload(SendPixelsIntact), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(Calls().Calls(), ElementsAre("CreateFactory"));
}

// A host that returns success without a picture.
TEST_F(ImagePreparation, NeedsTheProcessedPicture)
{
    Fixture.Host->Metadata->Picture = nullptr;
    EXPECT_EQ(Upload(SendProcessed), E_UNEXPECTED);
}

TEST_F(ImagePreparation, TakesTheProfileFromWhereItIs)
{
    const struct
    {
        const char *failing; // null: nothing fails
        UINT otherCount, ownCount;
        Lines asked;  // frames that are asked for their profile
        size_t given; // profiles given to the encoder, the refused one included
    } cases[] = {
        {nullptr, 1, 1, {"Other source"}, 1},
        {nullptr, 2, 1, {"Other source"}, 1},
        {nullptr, 0, 1, {"Other source"}, 0},
        {"CreateColorContext", 1, 1, {}, 0},
        {"Other decoder.Initialize", 1, 1, {"Source"}, 1},
        {"Other decoder.Initialize", 1, 0, {"Source"}, 0},
        {"Other decoder.GetFrame", 1, 1, {"Source"}, 1},
        {"Other source.GetColorContexts", 1, 1, {"Other source", "Source"}, 1},
        {"Frame.SetColorContexts", 1, 1, {"Other source", "Source"}, 2},
    };
    for (const auto &c : cases)
    {
        const auto number = &c - cases;
        Calls().Reset();
        Fixture.Imaging.OtherProfileCount = c.otherCount;
        Fixture.Imaging.ProfileCount = c.ownCount;
        if (c.failing)
        {
            Calls().FailOperation(c.failing, SomeFailure);
        }
        EXPECT_EQ(Upload(SendPixelsIntact), S_OK) << number;
        Lines asked;
        for (const std::string &call : Calls().Operations())
        {
            if (call.ends_with("source.GetColorContexts") || call.ends_with("Source.GetColorContexts"))
            {
                asked.push_back(call.substr(0, call.find('.')));
            }
        }
        EXPECT_EQ(asked, c.asked) << number;
        EXPECT_EQ(Calls().DetailsOf("Frame.SetColorContexts"), Lines(c.given, "1")) << number;
    }
    // The file is gone when it is opened a second time.
    Calls().Reset();
    Fixture.Imaging.ProfileCount = 1;
    Calls().OnCall = [this](const std::string &call) {
        if (call == "CreateColorContext")
        {
            std::filesystem::remove(Fixture.PathOf("p.jpg"));
        }
    };
    EXPECT_EQ(Upload(SendPixelsIntact), S_OK);
    EXPECT_THAT(Calls().DetailsOf("Source.GetColorContexts"), ElementsAre("1"));
    EXPECT_THAT(Calls().DetailsOf("Frame.SetColorContexts"), ElementsAre("1"));
    // A failure of the fallback is ignored like all others, with blocks to copy and without.
    for (const bool hasBlocks : {true, false})
    {
        Fixture.AddItem("p", TEXT("jpg"), JpegBytes);
        Fixture.Imaging.HasBlocks = hasBlocks;
        for (const char *failing : {"Source.GetColorContexts", "Frame.SetColorContexts"})
        {
            Calls().Reset();
            Calls().FailOperation("Other decoder.Initialize", SomeFailure);
            Calls().FailOperation(failing, SomeFailure);
            EXPECT_EQ(Upload(SendPixelsIntact), S_OK) << failing;
        }
    }
}

TEST_F(ImagePreparation, WaitsForAPictureThatReadsAsABadOne)
{
    for (const UINT32 mode : {SendPixelsIntact, SendProcessed})
    {
        for (size_t failures = 1; failures <= 4; ++failures)
        {
            Calls().Reset();
            for (size_t nth = 1; nth <= failures; ++nth)
            {
                Calls().FailOperation("Frame.WriteSource", BadImage, nth);
            }
            EXPECT_EQ(Upload(mode), failures < 4 ? S_OK : BadImage);
            const std::vector<DWORD> all{100, 200, 300};
            EXPECT_EQ(Pauses, std::vector<DWORD>(all.begin(), all.begin() + std::min<ptrdiff_t>(failures, 3)));
            EXPECT_EQ(Calls().DetailsOf("ReadImageMetadata").size(), std::min<size_t>(failures + 1, 4));
            EXPECT_EQ(Calls().DetailsOf("CreateFactory").size(), 1u);
            // These passes copy the source's blocks like the first.
            EXPECT_EQ(Calls().DetailsOf("Frame.InitializeFromBlockReader").size(),
                      mode == SendPixelsIntact ? std::min<size_t>(failures + 1, 4) : 0u);
        }
    }
}

TEST_F(ImagePreparation, GoesWithoutTheBlocksThatNobodyCanWrite)
{
    const struct
    {
        const char *operation;
        HRESULT code;
    } cases[] = {{"WriteImageMetadata", SomeFailure}, {"Frame.WriteSource", UnexpectedType}};
    for (const auto &c : cases)
    {
        Calls().Reset();
        Calls().FailOperation(c.operation, c.code);
        UploadOptions options = Options(SendPixelsIntact);
        options.WriteGPS = false;
        EXPECT_EQ(Upload(options), S_OK) << c.operation;
        EXPECT_THAT(Pauses, IsEmpty());
        EXPECT_EQ(Calls().DetailsOf("Frame.InitializeFromBlockReader").size(), 1u);
        EXPECT_EQ(Calls().DetailsOf("Frame.BlockWriter").size(), 1u);
        EXPECT_EQ(Calls().DetailsOf("Metadata.Remove"), (Lines{"/xmp", "/app13", "/xmp", "/app13"}));
        const std::string blankAgain = "1111110 800x600 at 96x96 copyright exif xmp iptc";
        EXPECT_THAT(Calls().DetailsOf("WriteImageMetadata"), ElementsAre(blankAgain, blankAgain));

        Calls().FailOperation(c.operation, c.code, 3);
        Calls().FailOperation(c.operation, c.code, 4);
        EXPECT_EQ(Upload(options), c.code) << "without blocks the failure stands";

        Calls().Reset();
        Calls().FailOperation(c.operation, c.code);
        EXPECT_EQ(Upload(SendProcessed), c.code) << "there are no blocks to go without";
        EXPECT_EQ(Calls().Operations().back(), c.operation);
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
        Calls().Reset();
        UploadOptions options = Options(SendPixelsIntact);
        options.*c.group = false;
        EXPECT_EQ(Upload(options), S_OK);
        options.Mode = SendProcessed;
        EXPECT_EQ(Upload(options), S_OK);
        // For a processed picture the flags alone decide.
        EXPECT_THAT(
            Calls().DetailsOf("WriteImageMetadata"),
            ElementsAre(c.intact, std::string(c.processed) + "11 800x600 at 96x96 copyright exif xmp gps iptc"));
    }

    // All off, and one alone on: only then is the picture marked as processed.
    UploadOptions options;
    options.Mode = SendPixelsIntact;
    Calls().Reset();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().DetailsOf("WriteImageMetadata"), ElementsAre("1111100 800x600 at 96x96"));
    EXPECT_EQ(Calls().DetailsOf("Frame.InitializeFromBlockReader").size(), 1u);
    const auto field = Fixture.Web.CallsOf("UploadRequest")[0].Arguments[5];
    EXPECT_NE(Narrow(field).find("&description=A comment&"), std::string::npos) << "the form keeps its words";

    options.Mode = SendProcessed;
    Calls().Reset();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().DetailsOf("WriteImageMetadata"),
                ElementsAre("0000001 800x600 at 96x96 copyright exif xmp gps iptc"));
    EXPECT_THAT(Calls().DetailsOf("Metadata.Set"), IsEmpty());
    options.WriteGPS = true;
    Calls().Reset();
    EXPECT_EQ(Upload(options), S_OK);
    EXPECT_THAT(Calls().DetailsOf("WriteImageMetadata"),
                ElementsAre("0001011 800x600 at 96x96 copyright exif xmp gps iptc"));
    EXPECT_EQ(Calls().DetailsOf("Metadata.Set").size(), 1u);
}
