// Publish runs, through the interface that the host calls.
#include "com/Hresult.h"
#include "com/ModuleLocks.h"
#include "plugin/FlickrPublisher.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/doubles/ReplyDocuments.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <thread>

using testing::ElementsAre;
using Lines = std::vector<std::string>;

namespace
{
const WCHAR *const Refusal =
    TEXT("<rsp stat=\"fail\"><err code=\"5\" msg=\"filetype was not recognised\"/></rsp>");

// Calls whose failure doesn't keep a picture from being sent, by the mode: it goes without its texts, its type, its
// profile or some metadata, and a length that was told counts, whatever the result.
const Lines PassedOver[] = {
    {"read", "ReadImageMetadata", "GetMimeTypeForFile", "GetBodyLength"},
    {"GetMimeTypeForFile", "GetBodyLength", "CreateColorContext", "CreateDecoder jpeg other", "Other decoder.",
     "Other source.", "Frame.SetColorContexts", "Source.BlockReader", "Frame.InitializeFromBlockReader",
     "Metadata.Remove", "WriteImageMetadata"},
    {"GetMimeTypeForFile", "GetBodyLength", "Metadata.Set"},
};
const Lines ToldAsUnexpected{"Create IOAuthWebClient", "SetService", "SetAccessToken",
                             "Create IMultipartFormData"};

bool BeginsAs(const std::string &line, const Lines &calls)
{
    return std::ranges::any_of(calls, [&](const std::string &call) { return line.starts_with(call); });
}

class PublishRun : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CFlickrPublisher::CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), Plugin.PutVoid()),
                  S_OK);
        ASSERT_EQ(Plugin->Initialize(Fixture.Host.Get(), 1033, Fixture.Stream.Get(), 0), S_OK);
    }

    void TearDown() override
    {
        EXPECT_FALSE(Fixture.Host->IsListLocked());
        EXPECT_EQ(Plugin->Terminate(), S_OK);
    }

    void AddPictures(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            Fixture.AddItem("p" + std::to_string(i), TEXT("jpg"), JpegBytes);
        }
    }

    void Publish() { EXPECT_EQ(Plugin->Publish(Fixture.Windows.Bar(), Fixture.Windows.StatusText()), S_OK); }

    // So many of the pictures are sent, and the nth call of a record has a result of its own.
    void PublishWith(CallRecord &record, size_t call, HRESULT result, int sent)
    {
        Fixture.Record.Clear();
        Fixture.Web.Clear();
        Fixture.Imaging.Calls.Clear();
        const long locks = ModuleLocks::Read();
        record.FailCall(call, result);
        for (int i = 0; i < sent; ++i)
        {
            Fixture.Web.Answer(OkReply);
        }
        Publish();
        EXPECT_EQ(ModuleLocks::Read(), locks) << "objects are left over";
        EXPECT_EQ(Fixture.Web.Bodies.size(), static_cast<size_t>(sent));
    }

    std::string FailureOf(const std::string &call, HRESULT code) const
    {
        char told[9];
        std::snprintf(told, sizeof told, "%08x",
                      static_cast<unsigned>(BeginsAs(call, ToldAsUnexpected) ? E_UNEXPECTED : code));
        return "Could not publish \"" + Fixture.PathOf("p0.jpg") + "\" (Error code: 0x" + told +
               ") (internal: invalid argument)";
    }

    Lines Log(const char *level) const { return Fixture.Record.LinesOf(std::string("log ") + level + " "); }
    std::string LastStatus() const
    {
        const Lines lines = Fixture.Record.LinesOf("status ");
        return lines.empty() ? "" : lines.back();
    }
    std::string LastState() const { return Fixture.Record.LinesOf("bar state ").back(); }

    PublishFixture Fixture;
    ComPtr<IHalvoraPublishingPlugin> Plugin;
};
} // namespace

TEST_F(PublishRun, TellsItsCourseToLogStatusAndBar)
{
    AddPictures(2);
    Fixture.Web.Answer(TEXT("<rsp stat=\"ok\"><user ispro=\"1\"><filesize maxbytes=\"5\"/>"
                            "<bandwidth maxbytes=\"0\" usedbytes=\"0\"/></user></rsp>"));
    EXPECT_EQ(Plugin->CanPublish(nullptr, TRUE), S_OK);
    const Lines course{
        "log verbose Starting.",
        "log verbose Publish to Flickr 1.96 (Build 401)",
        "log verbose Name=f, Type=Pro, MaxFileSize=5 bytes, UploadLeftThisMonth=Unlimited",
        "status Checking connectivity...",
        "bar position 0",
        "bar state 1",
        "log info Publishing to User Photostream",
        "status Publishing...",
        "list",
        "log info Send JPEG files intact",
        "bar range 0 200",
        "bar state 1",
        "bar position 0",
        "usage WebPublisher:Flickr Publishing 2",
        "item 0",
        "log info Publishing \"" + Fixture.PathOf("p0.jpg") + "\".",
        "read " + Fixture.PathOf("p0.jpg"),
        "bar position 100",
        "status Published 1 of 2 items. Estimating remaining time...",
        "item 1",
        "log info Publishing \"" + Fixture.PathOf("p1.jpg") + "\".",
        "read " + Fixture.PathOf("p1.jpg"),
        "bar position 200",
        "status Published 2 of 2 items. Estimated time left: less than one minute.",
        "status Done.",
        "log verbose Ending.",
    };
    // The second run begins as the first did, whatever that left behind.
    for (int run = 0; run < 2; ++run)
    {
        Fixture.Record.Clear();
        Fixture.Web.Answer(OkReply);
        Fixture.Web.Answer(OkReply);
        Publish();
        EXPECT_EQ(Fixture.Record.Lines(), course);
    }
}

TEST_F(PublishRun, SendsTheFileAsItLiesUnderItsName)
{
    Fixture.AddItem("photo", TEXT("tif;jpeg"), JpegBytes);
    Fixture.Host->Metadata->Caption = TEXT("A title");
    Fixture.Host->Metadata->Keywords = TEXT("a; b c");
    Fixture.Settings.Set(TEXT("AsyncUpload"), 7);
    Fixture.Settings.Set(TEXT("IsPublic"), 3);
    Fixture.Settings.Set(TEXT("IsFriend"), UINT32_MAX);
    Fixture.Settings.Set(TEXT("SafetyLevel"), 2);
    Fixture.Settings.Set(TEXT("ContentType"), 4);
    Fixture.Settings.Set(TEXT("SearchVisibility"), 1);
    Fixture.Web.Answer(OkReply);
    Publish();
    EXPECT_EQ(LastStatus(), "Done.");
    EXPECT_THAT(Fixture.Web.FileParts, ElementsAre(JpegBytes));
    const std::string signedFields =
        "async=1&title=A title&tags=\"a\" \"b c\"&is_public=3&is_friend=4294967295&is_family=0&"
        "safety_level=3&content_type=5&hidden=2";
    std::string body = signedFields + "\n" + std::string(JpegBytes);
    std::ranges::replace(body, '&', '\n');
    EXPECT_THAT(Fixture.Web.Bodies, ElementsAre(body)) << "what is signed is what is sent";
    const std::string length = std::to_string(body.size());
    EXPECT_THAT(Fixture.Web.CallsOf("UploadRequest").at(0).Arguments,
                ElementsAre("https://api.flickr.com/services/upload/", "(null)", "POST",
                            "Content-Type=multipart/form-data; boundary=fake&Content-Length=" + length, "(null)",
                            signedFields, "(object)", length, "(object)", "0"));
    EXPECT_THAT(Fixture.Web.CallsOf("AddFilePart").at(0).Arguments,
                ElementsAre("photo", "(object)", "image/jpeg", "photo.jpg", "0", "0"));
    std::string operations;
    for (const std::string &operation : Fixture.Web.Operations())
    {
        operations += operation + ", ";
    }
    EXPECT_EQ(operations,
              "Create IOAuthWebClient, SetService, SetAccessToken, Create IMultipartFormData, GetMimeTypeForFile, "
              "Create IRequestParameters, Add, AddTextField, Add, AddTextField, Add, AddTextField, "
              "Add, AddNumberField, Add, AddNumberField, Add, AddNumberField, Add, AddNumberField, "
              "Add, AddNumberField, Add, AddNumberField, AddFilePart, QueryInterface IStream, GetBodyLength, "
              "GetContentType, Create IRequestParameters, Add, Add, UploadRequest, ");
}

// Every call of a component that the publishing of a picture makes fails in turn, by each code. The picture fails by
// that code, or is sent all the same; the next picture is published in any case, and nothing is left behind.
TEST_F(PublishRun, FailsTheItemByTheCodeOfTheCallThatFailed)
{
    AddPictures(2);
    const auto pictures = Fixture.Host->Items;
    CallRecord *const records[] = {&Fixture.Record, &Fixture.Web, &Fixture.Imaging.Calls};
    for (const UINT32 mode : {0, 1, 2})
    {
        Fixture.Settings.Set(TEXT("JPEGMode"), mode);
        Fixture.Host->Items = {pictures[0]};
        PublishWith(Fixture.Web, 1, S_OK, 1);
        Fixture.Host->Items = pictures;
        const Lines made[] = {Fixture.Record.Lines(), Fixture.Web.Lines(), Fixture.Imaging.Calls.Lines()};
        for (size_t record = 0; record < std::size(records); ++record)
        {
            for (size_t call = 1; call <= made[record].size(); ++call)
            {
                const std::string &line = made[record][call - 1];
                if (record == 0 && !line.starts_with("read"))
                {
                    continue; // its result counts for nothing, or for all pictures
                }
                for (const HRESULT code : {E_FAIL, E_OUTOFMEMORY, E_ABORT, E_NOTIMPL, S_FALSE})
                {
                    SCOPED_TRACE("mode " + std::to_string(mode) + ", " + line + ", code " + std::to_string(code));
                    const bool isSent = SUCCEEDED(code) || BeginsAs(line, PassedOver[mode]);
                    PublishWith(*records[record], call, code, isSent ? 2 : 1);
                    EXPECT_EQ(Log("error"), isSent ? Lines() : Lines{FailureOf(line, code)});
                    EXPECT_EQ(LastStatus(), "Done.");
                    EXPECT_EQ(LastState(), isSent ? "1" : "3");
                    const bool isNewPass = mode == 1 && FAILED(code) && line.starts_with("WriteImageMetadata");
                    EXPECT_TRUE(!isSent ||
                                Fixture.Imaging.Calls.CallsOf("CreateEncoder").size() == (mode == 0   ? 0u
                                                                                          : isNewPass ? 3u
                                                                                                      : 2u));
                    EXPECT_TRUE(isSent || record == 0 ||
                                records[record]->Lines().size() == call + made[record].size())
                        << "more is done for the picture that has failed";
                }
            }
        }
    }
}

TEST_F(PublishRun, FailsTheItemWhoseLengthIsNotKnown)
{
    AddPictures(1);
    Fixture.Web.BodyLength = 0;
    Fixture.Web.FailOperation("GetBodyLength", 0x80031234);
    Publish();
    EXPECT_THAT(Log("error"), ElementsAre(testing::HasSubstr("0x80031234")));
}

// A file without a title is named after itself, unless nothing of it could be read.
TEST_F(PublishRun, SendsNoTextOfAPictureWhoseMetadataCannotBeRead)
{
    AddPictures(1);
    for (const HRESULT result : {S_OK, E_FAIL})
    {
        Fixture.Record.FailOperation("read", result);
        Fixture.Web.Clear();
        Fixture.Web.Answer(OkReply);
        Publish();
        EXPECT_THAT(Fixture.Web.CallsOf("UploadRequest").at(0).Arguments[5],
                    testing::StartsWith(result == S_OK ? "title=p0" : "is_public="));
    }
}

TEST_F(PublishRun, GoesOnAfterATransportFailureAndStopsAtARefusal)
{
    AddPictures(4);
    Fixture.Web.Answer(OkReply);
    Fixture.Web.AnswerWith(E_FAIL,
                           MakeDocument(TEXT("<HttpError HttpStatus=\"503\"><Status>Busy</Status></HttpError>")));
    Fixture.Web.Answer(Refusal);
    Publish();
    EXPECT_THAT(Fixture.Record.LinesOf("item "), ElementsAre("0", "1", "2"));
    EXPECT_THAT(Log("error"), ElementsAre("Could not publish \"" + Fixture.PathOf("p1.jpg") +
                                          "\" (Error code: 0x80004005) HTTP Status = 503: Busy"));
    EXPECT_THAT(Log("fatal"),
                ElementsAre("Could not publish \"" + Fixture.PathOf("p2.jpg") +
                            "\" (Error code: 0x80004005) Flickr Status = 5: Filetype was not recognised"));
    EXPECT_EQ(LastState(), "2");
    EXPECT_EQ(LastStatus(), "Error.");
}

TEST_F(PublishRun, TakesAnAnswerWithoutAVerdictForASuccess)
{
    AddPictures(3);
    Fixture.Web.AnswerWith(S_OK, nullptr);
    Fixture.Web.Answer(TEXT("<rsp/>"));
    Fixture.Web.Answer(TEXT("<rsp stat=\"OK\"/>"));
    Publish();
    EXPECT_TRUE(Log("error").empty());
    EXPECT_EQ(LastState(), "1");
}

// A file that isn't what its name says is refused, or tried again as a processed picture where that is the mode.
TEST_F(PublishRun, ChecksWhatAFileReallyIs)
{
    constexpr std::string_view tiff("II*\0 a TIFF", 11);
    const struct
    {
        UINT32 mode;
        const WCHAR *extension;
        std::string_view content;
        const char *sentAs; // null: not sent
        const char *code;
        const char *tellsOfWrongName; // the level, or null
    } cases[] = {
        {0, TEXT("gif"), GifBytes, "x.gif", "", nullptr},
        {0, TEXT("png"), JpegBytes, "x.png", "", nullptr},
        {0, TEXT("jpg"), "BM bitmap", nullptr, "80004005", "error"},
        {0, TEXT("png"), "text", nullptr, "88982f50", nullptr},
        {0, TEXT("jpg"), "", nullptr, "88982f50", nullptr},
        {1, TEXT("jpg"), tiff, nullptr, "80004005", "error"},
        {2, TEXT("jpg"), tiff, "x.jpg", "", nullptr},
        {2, TEXT("png"), "BM bitmap", "x.jpg", "", "warning"},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        Fixture.Settings.Set(TEXT("JPEGMode"), c.mode);
        Fixture.Record.Clear();
        Fixture.Web.Clear();
        Fixture.Host->Items.clear();
        Fixture.AddItem("x", c.extension, c.content);
        if (c.sentAs)
        {
            Fixture.Web.Answer(OkReply);
        }
        Publish();
        const std::string path = "\"" + Fixture.PathOf("x." + Narrow(c.extension)) + "\"";
        Lines expected;
        if (c.tellsOfWrongName)
        {
            expected.push_back(c.tellsOfWrongName + (" " + path) +
                               " is not what it appears to be (wrong file extension?)");
        }
        if (!c.sentAs)
        {
            expected.push_back("error Could not publish " + path + " (Error code: 0x" + c.code +
                               ") (internal: invalid argument)");
        }
        Lines told = Fixture.Record.LinesOf("log ");
        std::erase_if(told, [](const std::string &line) {
            return !line.starts_with("error") && !line.starts_with("warning");
        });
        EXPECT_EQ(told, expected);
        EXPECT_EQ(Fixture.Web.CallsOf("UploadRequest").size(), c.sentAs ? 1u : 0u);
        if (c.sentAs)
        {
            EXPECT_THAT(Fixture.Web.FileParts, ElementsAre(c.mode == 2 ? FakeImaging::EncodedBytes : c.content))
                << "rewound after the check";
            EXPECT_EQ(Fixture.Web.CallsOf("AddFilePart").at(0).Arguments[3], c.sentAs);
        }
    }
}

TEST_F(PublishRun, SendsEveryOtherFileAsAJpegOfTheHostsMaking)
{
    Fixture.AddItem("raw", TEXT("nef;tif"), "raw");
    Fixture.Host->Items.push_back({TEXT("C:\\nothing"), std::nullopt});
    Fixture.Imaging.Calls.FailOperation("ReadImageMetadata", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), 2);
    Fixture.Web.Answer(OkReply);
    Publish();
    EXPECT_THAT(Fixture.Web.FileParts, ElementsAre(FakeImaging::EncodedBytes));
    EXPECT_EQ(Fixture.Web.CallsOf("AddFilePart").at(0).Arguments[3], "raw.jpg");
    EXPECT_THAT(Log("info"), testing::IsSupersetOf({"Publishing \"" + Fixture.PathOf("raw.nef") + "\" as JPEG.",
                                                    std::string("Publishing \"\" as JPEG.")}));
    EXPECT_THAT(Log("error"),
                ElementsAre("Could not publish \"\" (Error code: 0x80070002) (internal: invalid argument)"));
}

// Each switch alone is on, for one kind of file, and all others of that kind are off; for the other kind of file
// it is the other way round.
TEST_F(PublishRun, SendsWhatTheSettingsOfItsKindOfFileAllow)
{
    static constexpr const WCHAR *Switches[] = {TEXT("WriteCopyright"), TEXT("WriteEXIF"), TEXT("WriteXMP"),
                                                TEXT("WriteGPS"),       TEXT("WriteIPTC"), TEXT("Minimize")};
    const struct
    {
        const WCHAR *settings, *others, *extension, *size;
        const char *picture, *resolution;
    } kinds[] = {
        {TEXT("JPEG"), TEXT("RAW"), TEXT("jpg"), TEXT("8 in"), "with picture of 2455", " at 307x307"},
        {TEXT("RAW"), TEXT("JPEG"), TEXT("nef"), TEXT("40 in"), "with picture of 7200", " at 180x180"},
    };
    Fixture.Settings.Set(TEXT("JPEGMode"), 2);
    for (const auto &kind : kinds)
    {
        Fixture.Settings.Set((WideText(kind.settings) + TEXT("LongDimension")).c_str(), kind.size);
    }
    for (const auto &kind : kinds)
    {
        for (size_t on = 0; on < std::size(Switches); ++on)
        {
            for (const WCHAR *const &name : Switches)
            {
                const bool isOn = name == Switches[on];
                Fixture.Settings.Set((WideText(kind.settings) + name).c_str(), UINT32{isOn});
                Fixture.Settings.Set((WideText(kind.others) + name).c_str(), UINT32{!isOn});
            }
            Fixture.Host->Items.clear();
            Fixture.AddItem("p", kind.extension, JpegBytes);
            Fixture.Imaging.Calls.Clear();
            Fixture.Web.Answer(OkReply);
            Publish();
            std::string flags = on < 5 ? "0000011" : "0000001";
            flags[on] = on < 5 ? '1' : flags[on];
            EXPECT_THAT(Fixture.Imaging.Calls.LinesOf("WriteImageMetadata "),
                        ElementsAre(testing::StartsWith(flags + " 800x600" + kind.resolution)));
            EXPECT_THAT(Fixture.Imaging.Calls.LinesOf("ReadImageMetadata "), ElementsAre(kind.picture));
            EXPECT_THAT(Fixture.Imaging.Calls.LinesOf("Options.Write "),
                        ElementsAre(testing::EndsWith(on == 5 ? "VT_UI1=1" : "VT_UI1=3")));
        }
    }
}

// A picture of the same name may be another one when it is read again.
TEST_F(PublishRun, TakesTheWordsOfTheLastPass)
{
    AddPictures(1);
    Fixture.Settings.Set(TEXT("JPEGMode"), 1);
    Fixture.Imaging.Calls.FailOperation("WriteImageMetadata", E_FAIL);
    Fixture.Imaging.Calls.FailOperation("Frame.WriteSource", WINCODEC_ERR_BADIMAGE);
    Fixture.Imaging.Calls.OnCall = [&](const std::string &call) {
        if (call == "ReadImageMetadata")
        {
            const size_t pass = Fixture.Imaging.Calls.LinesOf(call).size();
            Fixture.Host->Metadata->Caption = pass == 1   ? TEXT("First")
                                              : pass == 2 ? TEXT("Second")
                                                          : TEXT("Third");
            Fixture.Host->Metadata->Description =
                pass == 1 ? std::optional<WideText>(TEXT("Words")) : std::nullopt;
            Fixture.Host->Metadata->Keywords = pass == 3 ? std::optional<WideText>(TEXT("tag")) : std::nullopt;
        }
    };
    Fixture.Web.Answer(OkReply);
    Publish();
    EXPECT_EQ(LastStatus(), "Done.");
    EXPECT_THAT(Fixture.Web.CallsOf("UploadRequest").at(0).Arguments[5],
                testing::StartsWith("title=Third&tags=\"tag\"&is_public="));
}

// It isn't given, or can't be locked.
TEST_F(PublishRun, EndsWithoutAList)
{
    Fixture.Host->ListCanBeLocked = false;
    Fixture.Record.FailOperation("list", E_ACCESSDENIED);
    for (const char *state : {"1", "2"})
    {
        Publish();
        EXPECT_THAT(Log("fatal"), ElementsAre("Could not retrieve the list of images to be published."));
        EXPECT_EQ(LastStatus(), "Error.");
        EXPECT_EQ(LastState(), state);
        Fixture.Record.Clear();
    }
}

TEST_F(PublishRun, HasNothingToDoForAnEmptyList)
{
    Publish();
    EXPECT_THAT(Fixture.Record.LinesOf("usage "), ElementsAre("WebPublisher:Flickr Publishing 0"));
    EXPECT_THAT(Fixture.Record.LinesOf("bar range "), ElementsAre("0 0"));
    EXPECT_EQ(LastStatus(), "Done.");
}

// Each in its turn on one object, asked for from another thread in the middle of the first upload: no request reaches
// into the next run.
TEST_F(PublishRun, StopsBetweenItemsAndWithinThem)
{
    AddPictures(3);
    const struct
    {
        std::vector<BOOL> cancels;
        int answers; // uploads that come to their end
        Lines warnings;
        const char *status;
    } cases[] = {
        {{FALSE}, 1, {"Cancelling at user request."}, "Cancelled."},
        {{TRUE}, 0, {"Cancelling ABRUPTLY at user request."}, "Cancelled, aborted uploads."},
        {{}, 3, {}, "Done."},
        // A second, polite one takes the abruptness back.
        {{TRUE, FALSE}, 1, {"Cancelling ABRUPTLY at user request.", "Cancelling at user request."}, "Cancelled."},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        Fixture.Record.Clear();
        for (int i = 0; i < c.answers; ++i)
        {
            Fixture.Web.Answer(OkReply);
        }
        Fixture.Web.DuringUpload = [&](IUploadProgressCallback *callback, UINT32 length) {
            std::thread([&] {
                for (const BOOL isAbrupt : c.cancels)
                {
                    EXPECT_EQ(Plugin->Cancel(isAbrupt), S_OK);
                }
            }).join();
            return callback->OnUploadProgress(UPLOAD_BYTES, length, length / 2);
        };
        Publish();
        EXPECT_EQ(Fixture.Record.LinesOf("item ").size(), c.cancels.empty() ? 3u : 1u);
        EXPECT_EQ(Log("warning"), c.warnings);
        EXPECT_EQ(Log("error").size(), c.answers == 0 ? 1u : 0u);
        EXPECT_THAT(Log("error"), testing::Each(testing::HasSubstr("0x80004004")));
        EXPECT_EQ(LastStatus(), c.status);
        EXPECT_EQ(LastState(), c.cancels.empty() ? "1" : "3");
    }
}

TEST_F(PublishRun, MovesTheBarByWholePercents)
{
    AddPictures(1);
    Fixture.Web.Answer(OkReply);
    Fixture.Web.DuringUpload = [](IUploadProgressCallback *callback, UINT32) {
        for (const UINT32 done :
             {0u, 4'000'000'000u / 100, 41'000'000u, 3'000'000'000u, 2'000'000'000u, 4'000'000'000u})
        {
            EXPECT_EQ(callback->OnUploadProgress(UPLOAD_BYTES, 0, 0), S_OK);
            EXPECT_EQ(callback->OnUploadProgress(UPLOAD_BYTES, 4'000'000'000u, done), S_OK);
        }
        callback->OnUploadProgress(99, 1, 1);
        return S_OK;
    };
    Publish();
    EXPECT_THAT(Fixture.Record.LinesOf("bar position "), ElementsAre("0", "0", "1", "75", "50", "100"));
    EXPECT_THAT(Fixture.Record.LinesOf("status "),
                ElementsAre("Checking connectivity...", "Publishing...", "Estimating remaining time...",
                            "Estimated time left: less than one minute.", "Done."));

    // A text is written when it changes, and at the first report of each upload.
    Fixture.Record.Clear();
    Fixture.Web.DuringUpload = nullptr;
    Fixture.Web.Answer(OkReply);
    Publish();
    EXPECT_THAT(Fixture.Record.LinesOf("status "),
                testing::Contains("Estimated time left: less than one minute."));

    Fixture.Record.Clear();
    EXPECT_EQ(Plugin.As<IUploadProgressCallback>()->OnUploadProgress(UPLOAD_BYTES, 2, 1), S_OK);
    EXPECT_TRUE(Fixture.Record.Lines().empty()) << "after the run the windows are the host's alone";
}

TEST_F(PublishRun, NeedsBothWindows)
{
    EXPECT_EQ(Plugin->Publish(nullptr, Fixture.Windows.StatusText()), E_INVALIDARG);
    EXPECT_EQ(Plugin->Publish(Fixture.Windows.Bar(), nullptr), E_INVALIDARG);
    EXPECT_TRUE(Fixture.Record.Lines().empty());
}
