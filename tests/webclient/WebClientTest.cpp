// Requests through the registered component, against a TLS server that keeps a record of them.
#include "com/BstrOwner.h"
#include "com/TextConversion.h"
#include "tests/webclient/ScriptedStream.h"
#include "tests/webclient/ServiceFixture.h"

#include <cstdio>
#include <thread>

namespace
{
using testing::HasSubstr;

class WebClientTest : public ServiceFixture
{
};

const WCHAR *const Title = TEXT("Gr\u00FC\u00DFe \u65E5\u672C & +50% \U0001F600\x01");

TEST_F(WebClientTest, UploadCarriesTheFormAsItIs)
{
    HttpTestServer &server = StartServer();
    ComPtr<IMultipartFormData> form;
    ASSERT_EQ(CoCreateInstance(CLSID_MultipartFormData, nullptr, 23, __uuidof(IMultipartFormData), form.PutVoid()),
              S_OK);
    const auto picture = ScriptedStream::Make(std::string(300'000, 'p'), 10'000);
    form->AddTextField(TEXT("title"), Title);
    form->AddNumberField(TEXT("is_public"), 1);
    form->AddFilePart(TEXT("photo"), picture.Get(), TEXT("image/jpeg"), TEXT("/home/me/b\u00E4r.jpg"), 0, 0);
    UINT32 length = 0;
    ASSERT_EQ(form->GetBodyLength(&length), S_OK);
    BstrOwner type;
    form->GetContentType(type.Put());
    const auto headers = Parameters({{TEXT("Content-Type"), type.Text()}, {TEXT("Content-Length"), TEXT("-5")}});
    const auto fields = Parameters({{TEXT("title"), Title}, {TEXT("is_public"), TEXT("1")}});
    const auto progress = RecordedProgress::Make();
    const UploadOutcome outcome =
        Upload(Client().Get(), QueryFor<IStream>(form.Get()).Get(), length, progress.Get(), fields.Get(),
               headers.Get(), TEXT("http://api.flickr.com/services/upload/"));
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(outcome.Text("/rsp/photoid"), "17");

    ASSERT_EQ(server.Requests().size(), 1u);
    const SeenRequest request = server.Requests()[0];
    EXPECT_EQ(request.line, "POST /services/upload/ HTTP/1.1");
    EXPECT_EQ(request.Header("content-length"), std::to_string(length));
    EXPECT_EQ(request.Header("content-type"), ToUtf8(type.View()));
    EXPECT_EQ(request.bodyBytes, length);
    EXPECT_THAT(request.body, HasSubstr("\r\n\r\n" + ToUtf8(Title) + "\r\n"));
    EXPECT_THAT(request.body, HasSubstr("filename=\"b\xC3\xA4r.jpg\""));
    EXPECT_THAT(request.body, HasSubstr("\r\n\r\n" + std::string(300'000, 'p') + "\r\n--"));
    EXPECT_TRUE(IsSignedRight(request.Header("authorization"), "POST", "https://api.flickr.com/services/upload/",
                              {{"title", SecretText(ToUtf8(Title))}, {"is_public", SecretText("1")}},
                              "token-secret"));

    const auto &entries = progress->entries;
    ASSERT_GE(entries.size(), 2u);
    EXPECT_EQ(entries.front().code, static_cast<UINT32>(UPLOAD_BEGIN));
    for (size_t i = 1; i < entries.size(); ++i)
    {
        EXPECT_EQ(entries[i].code, static_cast<UINT32>(UPLOAD_BYTES));
        EXPECT_EQ(entries[i].total, length);
        EXPECT_GE(entries[i].done, i > 1 ? entries[i - 1].done : 0);
    }
    EXPECT_EQ(entries.back().done, length);
}

TEST_F(WebClientTest, FreshClientsShareOneConnection)
{
    HttpTestServer &server = StartServer();
    for (int i = 0; i < 5; ++i)
    {
        EXPECT_EQ(UploadText(Client().Get(), "picture").result, S_OK);
        EXPECT_EQ(CallMethod(Client().Get(), nullptr).result, S_OK);
    }
    EXPECT_EQ(server.Requests().size(), 10u);
    EXPECT_EQ(server.Connections(), 1);
}

TEST_F(WebClientTest, ConnectionThatClosedWhileIdleFailsNothing)
{
    HttpTestServer &server = StartServer([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.WriteReply(200, "OK", HttpTestServer::Success);
    });
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(UploadText(Client().Get(), "picture").result, S_OK);
        std::this_thread::sleep_for(std::chrono::milliseconds(200)); // until the server's goodbye is here
    }
    EXPECT_EQ(server.Connections(), 3);
    EXPECT_EQ(server.ResumedSessions(), 2);
}

// The service closes a kept connection when the next picture is half-way: it can't have that picture.
TEST_F(WebClientTest, PictureThatAKeptConnectionLostHalfWayIsSentOnceMore)
{
    constexpr UINT32 size = 30'000'000;
    std::atomic<int> lostOnes{0};
    HttpTestServer &server = StartServer([&lostOnes](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.WriteReply(200, "OK", HttpTestServer::Success);
        if (conversation.Number() == 1)
        {
            lostOnes += conversation.ReadHead() ? 1 : 0;
        }
    });
    const auto client = Client();
    EXPECT_EQ(UploadText(client.Get(), "first").result, S_OK);
    const auto stream = ScriptedStream::MakeEndless(size);
    const auto progress = RecordedProgress::Make();
    EXPECT_EQ(Upload(client.Get(), stream.Get(), size, progress.Get()).result, S_OK);
    EXPECT_EQ(lostOnes, 1);
    ASSERT_EQ(server.Requests().size(), 2u);
    EXPECT_NE(server.Requests()[1].connection, 1);
    EXPECT_EQ(server.Requests()[1].bodyBytes, size);
    const auto &entries = progress->entries;
    EXPECT_TRUE(std::is_sorted(entries.begin() + 1, entries.end(),
                               [](const auto &a, const auto &b) { return a.done < b.done; }));
    EXPECT_EQ(entries.back().done, size);
}

// The service may also be gone when libcurl tries to connect once more.
TEST_F(WebClientTest, RequestThatWasReadButNotAnsweredIsNotRepeated)
{
    for (const bool isGone : {false, true})
    {
        HttpTestServer &server = StartServer([&](Conversation &conversation) {
            conversation.ReadRequest();
            if (conversation.Number() == 1)
            {
                conversation.WriteReply(200, "OK", HttpTestServer::Success);
                conversation.ReadRequest();
                isGone ? m_server->StopListening() : void();
            }
        });
        EXPECT_EQ(UploadText(Client().Get(), "first").result, S_OK);
        const UploadOutcome outcome = UploadText(Client().Get(), "second");
        EXPECT_EQ(outcome.result, static_cast<HRESULT>(0x80072EFE));
        EXPECT_THAT(outcome.Description(), HasSubstr("the picture may or may not have arrived"));
        EXPECT_EQ(outcome.Text("/HttpError/@HttpStatus"), "0");
        EXPECT_EQ(server.Requests().size(), 2u);
    }
}

TEST_F(WebClientTest, HeadThatReachedADyingConnectionIsNotRepeated)
{
    std::atomic<int> heads{0};
    StartServer([&heads](Conversation &conversation) {
        while (conversation.ReadHead())
        {
            if (++heads > 1)
            {
                return;
            }
            conversation.WriteReply(200, "OK", HttpTestServer::Success);
        }
    });
    const auto fields = Parameters({});
    UploadOutcome outcome;
    const auto client = Client();
    // GETs have no body that would stop libcurl from trying again.
    const auto get = [&] {
        return client->RestRequest(nullptr, TEXT("GET"), nullptr, fields.Get(), 0, outcome.reply.Put());
    };
    EXPECT_EQ(get(), S_OK);
    EXPECT_EQ(get(), static_cast<HRESULT>(0x80072EFE));
    EXPECT_EQ(heads, 2);
}

TEST_F(WebClientTest, EarlyRefusalWinsOverTheRestOfTheBody)
{
    StartServer([](Conversation &conversation) {
        conversation.ReadHead();
        conversation.WriteReply(502, "Too Large", "Files of that size are not for us", "Connection: close\r\n");
        conversation.WaitForEnd();
    });
    const auto progress = RecordedProgress::Make();
    const UploadOutcome outcome =
        Upload(Client().Get(), ScriptedStream::MakeEndless(30'000'000).Get(), 30'000'000, progress.Get());
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(0x801901F6));
    EXPECT_EQ(outcome.Description(), "Files of that size are not for us"); // and it can't have arrived
    EXPECT_LT(progress->entries.back().done, 30'000'000u);
}

TEST_F(WebClientTest, TrustsTheAuthoritiesOfTheFileThatIsNamedAndNoOthers)
{
    StartServer();
    setenv("HALVORA_CA_FILE", "there-is-no-such-file.pem", 1);
    EXPECT_THAT(UploadText(Client().Get(), "x").Description(), HasSubstr("trusted certificates"));
    unsetenv("HALVORA_CA_FILE");
    StartServer();
    EXPECT_EQ(UploadText(Client().Get(), "x").result, static_cast<HRESULT>(0x80072F0D));
}

TEST_F(WebClientTest, HostWithoutAnAddressIsToldInWords)
{
    setenv("HALVORA_CONNECT_TO", "api.flickr.com:443:no-such-host.invalid:443", 1);
    const UploadOutcome unknown = UploadText(Client().Get(), "x");
    EXPECT_EQ(unknown.result, static_cast<HRESULT>(0x80072EE7));
    EXPECT_THAT(unknown.Description(), HasSubstr("was not found"));
}

TEST_F(WebClientTest, ProxyGetsTheNameAndPasswordOfItsAddressAndIsNamedWhenItRefuses)
{
    HttpTestServer &server = StartServer();
    HttpTestServer proxy([&server](Conversation &conversation) {
        while (const auto request = conversation.ReadHead())
        {
            if (request->Header("proxy-authorization") == "Basic bWU6c2VzYW1l")
            {
                conversation.Write("HTTP/1.1 200 OK\r\n\r\n");
                conversation.Relay(server.Port());
                return;
            }
            if (request->Header("proxy-authorization") == "Basic bWU6YmFubmVk")
            {
                conversation.WriteReply(403, "Not you", "");
                return;
            }
            conversation.WriteReply(407, "Who are you?", "", "Proxy-Authenticate: Basic realm=\"here\"\r\n");
        }
    });
    const std::string place = "127.0.0.1:" + std::to_string(proxy.Port());
    const std::string asks = "asks for a name and password";
    const std::string refuses =
        "The proxy " + place + " does not lead to api.flickr.com: it answered 403 Forbidden.";
    const struct
    {
        const char *login;
        HRESULT result;
        std::string description;
    } cases[] = {{"", static_cast<HRESULT>(0x80072EEF), asks},
                 {"me:sesame@", S_OK, "(none)"},
                 {"me:wrong@", static_cast<HRESULT>(0x80072EEF), asks},
                 {"me:banned@", static_cast<HRESULT>(0x80072EFD), refuses}};
    for (const auto &c : cases)
    {
        setenv("https_proxy", ("http://" + (c.login + place)).c_str(), 1);
        const UploadOutcome outcome = UploadText(Client().Get(), "picture");
        EXPECT_EQ(outcome.result, c.result) << c.login;
        EXPECT_THAT(outcome.Description(), HasSubstr(c.description));
    }
    unsetenv("https_proxy");
    EXPECT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].Header("proxy-authorization"), "(none)");
}

TEST_F(WebClientTest, FailingAnswerToAReportEndsTheUploadWithItsCode)
{
    StartServer();
    constexpr UINT32 size = 30'000'000;
    const auto progress = RecordedProgress::Make([](const RecordedProgress::ProgressEntry &entry) {
        return entry.code == UPLOAD_BYTES && entry.done > 0 ? static_cast<HRESULT>(0x80041234) : S_OK;
    });
    EXPECT_EQ(Upload(Client().Get(), ScriptedStream::MakeEndless(size).Get(), size, progress.Get()).result,
              static_cast<HRESULT>(0x80041234));
    EXPECT_LT(progress->entries.back().done, size);
    EXPECT_EQ(progress->entries.back().total, size);

    const auto never = RecordedProgress::Make([](const RecordedProgress::ProgressEntry &) { return E_ABORT; });
    EXPECT_EQ(Upload(Client().Get(), ScriptedStream::MakeEndless(10).Get(), 10, never.Get()).result, E_ABORT);
    EXPECT_EQ(never->entries.size(), 1u);
}

long PeakKilobytes()
{
    long peak = 0;
    std::unique_ptr<FILE, int (*)(FILE *)> status(std::fopen("/proc/self/status", "r"), std::fclose);
    for (char line[256]; status && std::fgets(line, sizeof(line), status.get()) != nullptr;)
    {
        std::sscanf(line, "VmHWM: %ld kB", &peak);
    }
    return peak;
}

TEST_F(WebClientTest, LargeBodiesPassThroughLittleMemory)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr UINT32 size = 100'000'000; // the sanitizer keeps memory of its own
    constexpr long limit = 1'000'000;
#else
    constexpr UINT32 size = 500'000'000;
    constexpr long limit = 48 * 1024;
#endif
    HttpTestServer &server = StartServer();
    const auto progress = RecordedProgress::Make();
    const UploadOutcome outcome =
        Upload(Client().Get(), ScriptedStream::MakeEndless(size).Get(), size, progress.Get());
    EXPECT_EQ(outcome.result, S_OK) << outcome.Description();
    ASSERT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].bodyBytes, size);
    EXPECT_EQ(progress->entries.back().done, size);
    EXPECT_LT(PeakKilobytes(), limit);
}
} // namespace
