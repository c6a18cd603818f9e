// The client by itself: what it hands to a transport, and what it makes of what comes back.
#include "com/BstrOwner.h"
#include "com/TextConversion.h"
#include "tests/doubles/ClassInPlace.h"
#include "tests/webclient/ClientUse.h"
#include "tests/webclient/ScriptedStream.h"
#include "webclient/OAuthWebClient.h"
#include "webclient/RequestUrl.h"

#include <gmock/gmock.h>

#include <array>
#include <cctype>
#include <vector>

namespace
{
using testing::HasSubstr;
using testing::Not;

struct CarriedRequest
{
    std::string method;
    std::string url;
    std::string userAgent;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    bool isSmall;
    bool needsNewConnection;

    std::string Header(const std::string &name) const
    {
        const auto found =
            std::find_if(headers.begin(), headers.end(), [&](const auto &h) { return h.first == name; });
        return found != headers.end() ? found->second : "(none)";
    }
};

// Reads each body to its end, keeps what it was given, and answers by turns as it is told.
class ScriptedTransport final : public HttpTransport
{
public:
    HttpReply Exchange(const HttpRequest &request) override
    {
        CarriedRequest carried{
            request.method, request.url, request.userAgent, {}, {}, request.isSmall, request.needsNewConnection};
        for (const HttpHeader &header : request.headers)
        {
            carried.headers.emplace_back(header.name, header.value.View());
        }
        while (request.body != nullptr && carried.body.size() < request.body->Length())
        {
            char buffer[1000];
            ULONG read = 0;
            const HRESULT result = request.body->Read(buffer, sizeof(buffer), &read);
            if (FAILED(result))
            {
                throw TransportError{TransportProblem::BodyUnreadable, result};
            }
            carried.body.append(buffer, read);
        }
        requests.push_back(std::move(carried));
        if (problem && requests.size() <= failures)
        {
            throw TransportError{*problem};
        }
        return replies.at((requests.size() - 1) % replies.size());
    }

    std::vector<HttpReply> replies{{200, "OK", "<rsp stat=\"ok\"><photoid>17</photoid></rsp>"}};
    std::optional<TransportProblem> problem;
    size_t failures = 1000; // of the first requests, with the problem
    std::vector<CarriedRequest> requests;
};

class OAuthWebClientTest : public testing::Test
{
protected:
    OAuthWebClientTest() : m_client(COAuthWebClient::Make(m_transport)) { SetUpClient(*m_client.Get()); }

    HRESULT UploadText(const std::string &text, IRequestParameters *headers = nullptr,
                       IRequestParameters *fields = nullptr)
    {
        return m_client->UploadRequest(TEXT("http://up.flickr.com/services/upload/"), nullptr, TEXT("POST"),
                                       headers, nullptr, fields, ScriptedStream::Make(text).Get(),
                                       static_cast<UINT32>(text.size()), nullptr, 0, m_reply.Put());
    }

    std::string ReplyText(const char *path) const { return DocumentText(m_reply.Get(), path); }

    std::shared_ptr<ScriptedTransport> m_transport = std::make_shared<ScriptedTransport>();
    ComPtr<COAuthWebClient> m_client;
    ComPtr<IUnknown> m_reply;
};

TEST_F(OAuthWebClientTest, UploadIsSignedOverItsFieldsAndGoesOutAsItIs)
{
    const WCHAR *title = TEXT("Gr\u00FC\u00DFe \u65E5\u672C & +50%");
    const auto headers = Parameters({{TEXT("Content-Type"), TEXT("multipart/form-data; boundary=b")},
                                     {TEXT("content-length"), TEXT("-5")},
                                     {TEXT("HOST"), TEXT("elsewhere")},
                                     {TEXT("Expect"), TEXT("100-continue")},
                                     {TEXT("Connection"), TEXT("close")},
                                     {TEXT("Transfer-Encoding"), TEXT("chunked")},
                                     {TEXT("User-Agent"), TEXT("Other/1.0")},
                                     {TEXT("Authorization"), TEXT("none")}});
    ASSERT_EQ(UploadText("the picture", headers.Get(), Parameters({{TEXT("title"), title}}).Get()), S_OK);
    EXPECT_EQ(ReplyText("/rsp/photoid"), "17");
    ASSERT_EQ(m_transport->requests.size(), 1u);
    const CarriedRequest &request = m_transport->requests[0];
    EXPECT_EQ(request.url, "https://up.flickr.com/services/upload/"); // secure, though it was asked for otherwise
    EXPECT_EQ(request.userAgent, "Halvora/1.2.3.4");
    EXPECT_EQ(request.body, "the picture");
    EXPECT_EQ(request.headers.size(), 2u); // no other of the caller's is his to write
    EXPECT_EQ(request.Header("Content-Type"), "multipart/form-data; boundary=b");
    EXPECT_THAT(request.Header("Authorization"), HasSubstr("oauth_token=\"the-token\""));
    EXPECT_TRUE(IsSignedRight(request.Header("Authorization"), request.method, request.url,
                              {{"title", SecretText(ToUtf8(title))}}, "token-secret"));
}

TEST_F(OAuthWebClientTest, MethodIsCalledByASignedForm)
{
    const WCHAR *title = TEXT("Gr\u00FC\u00DFe \u65E5 & +50% \U0001F600\x01");
    const auto fields = Parameters({{TEXT("method"), TEXT("flickr.test.echo")}, {TEXT("title"), title}});
    ASSERT_EQ(m_client->RestRequest(nullptr, TEXT("POST"), nullptr, fields.Get(), 0, m_reply.Put()), S_OK);
    const CarriedRequest &request = m_transport->requests.at(0);
    EXPECT_EQ(request.method + " " + request.url, "POST https://api.flickr.com/services/rest");
    EXPECT_EQ(request.Header("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(request.body,
              "method=flickr.test.echo&title=Gr%C3%BC%C3%9Fe%20%E6%97%A5%20%26%20%2B50%25%20%F0%9F%98%80%01");
    EXPECT_TRUE(IsSignedRight(request.Header("Authorization"), "POST", request.url, ParseForm(request.body),
                              "token-secret"));
    EXPECT_TRUE(request.isSmall);
    m_client->RestRequest(TEXT("/more"), TEXT("GET"), nullptr, Parameters({{TEXT("a"), TEXT("b c")}}).Get(), 0,
                          m_reply.Put());
    EXPECT_EQ(m_transport->requests.at(1).url, "https://api.flickr.com/services/rest/more?a=b%20c");
}

namespace
{
class HostsObserver final : public ComObject<HostsObserver, IUploadObserver>
{
public:
    STDMETHODIMP OnUploadReply(HRESULT result, IUnknown *reply) noexcept override
    {
        results.push_back(result);
        replies.emplace_back(reply);
        return E_FAIL; // which is nothing to the upload
    }

    std::vector<HRESULT> results;
    std::vector<ComPtr<IUnknown>> replies;
};
} // namespace

TEST_F(OAuthWebClientTest, AHostThatRegistersAnObserverLearnsWhatBecameOfUploads)
{
    const auto observer = HostsObserver::Make();
    const ClassInPlace registered(
        CLSID_UploadObserver, [&](REFIID iid, void **object) { return observer->QueryInterface(iid, object); });
    m_transport->replies.push_back({503, "Busy", ""});
    const std::vector<HRESULT> results = {UploadText("one"), UploadText("two")};
    EXPECT_EQ(results[0], S_OK);
    EXPECT_EQ(observer->results, results);
    EXPECT_EQ(DocumentText(observer->replies.at(0).Get(), "/rsp/photoid"), "17");
    EXPECT_EQ(DocumentText(observer->replies.at(1).Get(), "/HttpError/@HttpStatus"), "503");
    ComPtr<IUnknown> reply;
    m_client->RestRequest(nullptr, TEXT("GET"), nullptr, nullptr, 0, reply.Put());
    EXPECT_EQ(observer->results.size(), 2u) << "not of other requests";
}

struct RefusalCase
{
    int status;
    const char *words;
    const char *body;
    HRESULT result;
    const char *description;
};

TEST_F(OAuthWebClientTest, RefusalsAreToldInTheServicesWords)
{
    const RefusalCase cases[] = {
        {504, "Gateway Time-out", "<html><head><title>504 Gateway Time-out</title></head></html>",
         static_cast<HRESULT>(0x801901F8), "The picture may or may not have arrived: 504 Gateway Time-out"},
        {400, "Bad", "application-secret and application-key of the-token, token-secret",
         static_cast<HRESULT>(0x80190190), "and of ,"},
        {200, "OK", "all fine", static_cast<HRESULT>(0x80072F78),
         "The answer is not in the service's form, and the picture may or may not have arrived: all fine"},
    };
    for (const RefusalCase &refusal : cases)
    {
        m_transport->replies = {{refusal.status, refusal.words, refusal.body}};
        EXPECT_EQ(UploadText("x"), refusal.result);
        EXPECT_EQ(ReplyText("/HttpError/@HttpStatus"), std::to_string(refusal.status));
        EXPECT_EQ(ReplyText("/HttpError/Status"), refusal.words);
        EXPECT_EQ(ReplyText("/HttpError/Description"), refusal.description);
    }
    m_transport->replies = {{429, "Too Many Requests", "slow down", 30}};
    UploadText("x");
    EXPECT_EQ(ReplyText("/HttpError/Description"), "The service asks to wait 30 seconds: slow down");
    EXPECT_EQ(m_transport->requests.size(), std::size(cases) + 1); // each was sent once
    EXPECT_FALSE(m_transport->requests[0].isSmall);
}

TEST_F(OAuthWebClientTest, PictureThatAKeptConnectionLostIsSignedAndSentOnceMore)
{
    m_transport->problem = TransportProblem::KeptConnectionLost;
    m_transport->failures = 1;
    EXPECT_EQ(UploadText("the picture"), S_OK);
    const auto &requests = m_transport->requests;
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[1].body, "the picture");
    EXPECT_TRUE(requests[1].needsNewConnection && !requests[0].needsNewConnection);
    EXPECT_EQ(requests[1].headers.size(), requests[0].headers.size());
    EXPECT_NE(requests[1].Header("Authorization"), requests[0].Header("Authorization"));

    m_transport->requests.clear();
    EXPECT_EQ(m_client->RestRequest(nullptr, TEXT("POST"), nullptr, Parameters({{TEXT("a"), TEXT("b")}}).Get(), 0,
                                    m_reply.Put()),
              S_OK);
    EXPECT_EQ(requests.at(1).body, "a=b");

    // A stream that can't be rewound holds no whole picture any more.
    m_transport->requests.clear();
    const auto once = ScriptedStream::Make("the picture");
    once->seekFails = true;
    EXPECT_EQ(m_client->UploadRequest(TEXT("https://up.flickr.com/"), nullptr, TEXT("POST"), nullptr, nullptr,
                                      nullptr, once.Get(), 11, nullptr, 0, m_reply.Put()),
              static_cast<HRESULT>(0x80072EFE));
    EXPECT_EQ(requests.size(), 1u);

    m_transport->failures = 1000;
    for (const TransportProblem problem : {TransportProblem::KeptConnectionLost,
                                           TransportProblem::LostWhileSending, TransportProblem::LostBeforeAnswer})
    {
        m_transport->requests.clear();
        m_transport->problem = problem;
        EXPECT_EQ(UploadText("the picture"), static_cast<HRESULT>(0x80072EFE));
        EXPECT_EQ(requests.size(), problem == TransportProblem::KeptConnectionLost ? 2u : 1u);
        EXPECT_EQ(ReplyText("/HttpError/Description").find("may or may not have arrived") != std::string::npos,
                  problem == TransportProblem::LostBeforeAnswer);
    }
}

TEST_F(OAuthWebClientTest, BrokenConnectionsAreToldInWords)
{
    m_transport->problem = TransportProblem::LostBeforeAnswer;
    EXPECT_EQ(UploadText("x"), static_cast<HRESULT>(0x80072EFE));
    EXPECT_EQ(ReplyText("/HttpError/@HttpStatus"), "0");
    EXPECT_THAT(ReplyText("/HttpError/Description"), HasSubstr("the picture may or may not have arrived"));
    BstrOwner url;
    EXPECT_EQ(m_client->GetAuthorizationUrl(0, nullptr, url.Put()), static_cast<HRESULT>(0x80072EFE));
    m_transport->problem.reset();
    EXPECT_EQ(m_client->UploadRequest(TEXT("https://up.flickr.com/"), nullptr, TEXT("POST"), nullptr, nullptr,
                                      nullptr, ScriptedStream::Make("short").Get(), 1000, nullptr, 0,
                                      m_reply.Put()),
              HRESULT_FROM_WIN32(ERROR_HANDLE_EOF));
}

TEST(TransportWords, AreWholeSentencesAndSayWhetherAPictureMayHaveArrived)
{
    for (int i = 0; i <= static_cast<int>(TransportProblem::Other); ++i)
    {
        const auto problem = static_cast<TransportProblem>(i);
        const TransportWords words = WordsFor({problem, E_FAIL, "p", 502}, "h.test", "picture");
        EXPECT_TRUE(std::ranges::all_of(words.status, [](char c) { return c == ' ' || std::isalpha(c); }))
            << words.status;
        EXPECT_TRUE(words.description.ends_with('.') || words.description.ends_with('?') ||
                    words.description.ends_with("PORT"))
            << words.description;
        EXPECT_THAT(words.description, Not(HasSubstr("{")));
        const bool isUnknown =
            problem == TransportProblem::AnswerMissing || problem == TransportProblem::LostBeforeAnswer ||
            problem == TransportProblem::AnswerGarbled || problem == TransportProblem::AnswerTooLong ||
            problem == TransportProblem::EndedBeforeAnswer;
        EXPECT_EQ(words.description.find("may or may not have arrived") != std::string::npos, isUnknown)
            << words.description;
    }
}

TEST_F(OAuthWebClientTest, AuthorizationTradesItsTokens)
{
    m_transport->replies = {
        {200, "OK", "oauth_callback_confirmed=true&oauth_token=req%2B1&oauth_token_secret=reqs"},
        {200, "OK", "fullname=J%20D&oauth_token=acc&oauth_token_secret=accs%21"},
        {401, "Unauthorized", "oauth_problem=consumer_key_unknown"},
        {200, "OK", "<html>what?</html>"},
        {200, "OK", "oauth_token=+&oauth_token_secret=s"}};
    BstrOwner token;
    BstrOwner secret;
    EXPECT_EQ(m_client->GetAccessToken(0, TEXT("v"), token.Put(), secret.Put()), E_UNEXPECTED);
    BstrOwner url;
    const auto perms = Parameters({{TEXT("perms"), TEXT("write")}});
    ASSERT_EQ(m_client->GetAuthorizationUrl(0, perms.Get(), url.Put()), S_OK);
    EXPECT_EQ(ToUtf8(url.View()),
              "https://www.flickr.com/services/oauth/authorize?perms=write&oauth_token=req%2B1");
    ASSERT_EQ(m_client->GetAccessToken(0, TEXT("ver/1"), token.Put(), secret.Put()), S_OK);
    EXPECT_EQ(ToUtf8(token.View()), "acc");
    EXPECT_EQ(ToUtf8(secret.View()), "accs!");
    EXPECT_EQ(m_client->GetAccessToken(0, TEXT("v"), token.Put(), secret.Put()), E_UNEXPECTED) << "it is used up";

    const auto &requests = m_transport->requests;
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_THAT(
        requests[0].Header("Authorization"),
        HasSubstr("oauth_callback=\"http%3A%2F%2Fauthorization.halvora.example%2Fflickr%2Fauthorization%2F\""));
    EXPECT_THAT(requests[0].Header("Authorization"), Not(HasSubstr("oauth_token=")));
    EXPECT_TRUE(IsSignedRight(requests[0].Header("Authorization"), requests[0].method,
                              "https://www.flickr.com/services/oauth/request_token", {}, ""));
    EXPECT_THAT(requests[1].Header("Authorization"), HasSubstr("oauth_verifier=\"ver%2F1\""));
    EXPECT_TRUE(IsSignedRight(requests[1].Header("Authorization"), requests[1].method,
                              "https://www.flickr.com/services/oauth/access_token", {}, "reqs"));

    EXPECT_EQ(m_client->GetAuthorizationUrl(0, nullptr, url.Put()), static_cast<HRESULT>(0x80190191));
    EXPECT_EQ(m_client->GetAuthorizationUrl(0, nullptr, url.Put()), static_cast<HRESULT>(0x80072F78));
    EXPECT_EQ(m_client->GetAuthorizationUrl(0, nullptr, url.Put()), static_cast<HRESULT>(0x80072F78));
    EXPECT_TRUE(std::ranges::all_of(requests, [](const CarriedRequest &request) { return request.isSmall; }));
    EXPECT_EQ(url.Get(), nullptr);
}

TEST_F(OAuthWebClientTest, IncompleteCallsAreRefused)
{
    const auto bare = COAuthWebClient::Make(m_transport);
    EXPECT_EQ(bare->SetAccessToken(TEXT("a"), TEXT("b")), E_UNEXPECTED);
    EXPECT_EQ(bare->RestRequest(nullptr, TEXT("POST"), nullptr, nullptr, 0, m_reply.Put()), E_UNEXPECTED);
    EXPECT_EQ(bare->RestRequest(nullptr, TEXT("POST"), nullptr, nullptr, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(bare->SetService(TEXT("a"), TEXT("https://h/"), TEXT("PLAINTEXT"), TEXT("k"), TEXT("s"),
                               TEXT("https://h/"), TEXT("https://h/"), TEXT("https://h/"), TEXT("x"), 0),
              E_INVALIDARG);
    for (const WCHAR *agent : {static_cast<const WCHAR *>(nullptr), TEXT("a\r\nX: y")})
    {
        EXPECT_EQ(bare->SetService(agent, TEXT("https://h/"), TEXT("HMAC-SHA1"), TEXT("k"), TEXT("s"),
                                   TEXT("https://h/"), TEXT("https://h/"), TEXT("https://h/"), TEXT("x"), 0),
                  E_INVALIDARG);
    }
    EXPECT_THAT((std::array{bare->Reserved1(), bare->Reserved2(), bare->Reserved3()}), testing::Each(E_NOTIMPL));
    EXPECT_EQ(m_client->SetAccessToken(TEXT(" "), TEXT("b")), E_INVALIDARG);
    EXPECT_EQ(m_client->SetAccessToken(TEXT("a"), TEXT("")), E_INVALIDARG);
    EXPECT_EQ(m_client->SetAccessToken(nullptr, TEXT("b")), E_INVALIDARG);
    EXPECT_EQ(m_client->GetAuthorizationUrl(0, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_client->RestRequest(nullptr, TEXT("PUT"), nullptr, nullptr, 0, m_reply.Put()), E_INVALIDARG);
    EXPECT_EQ(m_client->UploadRequest(nullptr, nullptr, TEXT("POST"), nullptr, nullptr, nullptr, nullptr, 1,
                                      nullptr, 0, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(UploadText(""), E_INVALIDARG);
    EXPECT_EQ(m_client->UploadRequest(TEXT("http://flickr.example/upload/"), nullptr, TEXT("POST"), nullptr,
                                      nullptr, nullptr, ScriptedStream::Make("x").Get(), 1, nullptr, 0,
                                      m_reply.Put()),
              static_cast<HRESULT>(0x80072EE6));
    EXPECT_EQ(ReplyText("/HttpError/Status"), "Not sent");
    EXPECT_THAT(ReplyText("/HttpError/Description"), HasSubstr("on flickr.example, is not secure"));
    for (const WCHAR *value : {TEXT("a\r\nY: b"), TEXT("a\x7F")})
    {
        EXPECT_EQ(UploadText("x", Parameters({{TEXT("X"), value}}).Get()), E_INVALIDARG);
    }
    BstrOwner type;
    EXPECT_EQ(m_client->GetMimeTypeForFile(TEXT("x.JPG"), type.Put()), S_OK);
    EXPECT_EQ(ToUtf8(type.View()), "image/jpeg");
    BSTR left[] = {type.Get(), type.Get(), type.Get(), type.Get()};
    EXPECT_EQ(m_client->GetAccessToken(0, nullptr, &left[0], &left[1]), E_INVALIDARG);
    EXPECT_EQ(m_client->GetAccessToken(0, TEXT("v"), nullptr, left), E_INVALIDARG);
    EXPECT_EQ(m_client->GetAccessToken(0, TEXT("v"), left, nullptr), E_INVALIDARG);
    EXPECT_EQ(bare->GetAuthorizationUrl(0, nullptr, &left[2]), E_UNEXPECTED);
    EXPECT_EQ(m_client->GetMimeTypeForFile(nullptr, &left[3]), E_INVALIDARG);
    EXPECT_THAT(left, testing::Each(nullptr)); // a caller may free what a failed call gave
    EXPECT_TRUE(m_transport->requests.empty());
}
} // namespace
