// Requests to a server of this program's own. Natively only, where the server is.
#include "RequestUse.h"
#include "tests/server/HttpTestServer.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

constexpr HRESULT Internet(unsigned number)
{
    return static_cast<HRESULT>(0x80070000u | number);
}

const char *const Document = "<?xml version=\"1.0\"?><answer><word>forty two</word></answer>";

VARIANT TextValue(const BstrOwner &text)
{
    VARIANT value{};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.Get();
    return value;
}

// One reply for each request of a connection, as it stands.
HttpTestServer::Script Answer(const std::string &reply)
{
    return [reply](Conversation &conversation) {
        while (conversation.ReadRequest())
        {
            conversation.Write(reply);
        }
    };
}

std::string Reply(const std::string &body, const std::string &status = "200 OK", const std::string &headers = "")
{
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

class RequestExchange : public testing::Test
{
protected:
    void TearDown() override
    {
        for (const char *name : {"HALVORA_CONNECT_TO", "HALVORA_CA_FILE", "http_proxy"})
        {
            unsetenv(name);
        }
    }

    static std::string UrlOf(const HttpTestServer &server, const std::string &path = "/")
    {
        return "http://127.0.0.1:" + std::to_string(server.Port()) + path;
    }

    static HRESULT SetProxy(RequestUse &use, SXH_PROXY_SETTING setting, const std::string &servers = "",
                            const std::string &bypass = "")
    {
        ComPtr<IServerXMLHTTPRequest2> server;
        EXPECT_EQ(S_OK, use.request->QueryInterface(__uuidof(IServerXMLHTTPRequest2), server.PutVoid()));
        const BstrOwner list = Bstr(servers), exceptions = Bstr(bypass);
        return server->setProxy(setting, TextValue(list), TextValue(exceptions));
    }

    static void SetTimeouts(RequestUse &use, LONG connect, LONG sending, LONG receive)
    {
        ComPtr<IServerXMLHTTPRequest> server;
        ASSERT_EQ(S_OK, use.request->QueryInterface(__uuidof(IServerXMLHTTPRequest), server.PutVoid()));
        ASSERT_EQ(S_OK, server->setTimeouts(0, connect, sending, receive));
    }
};

TEST_F(RequestExchange, GivesStatusHeadersTextAndDocumentOfAReply)
{
    HttpTestServer server(Answer(Reply(Document, "200 All right", "X-One: a\r\nx-one:  b \r\nX-Empty:\r\n")));
    for (const CLSID *requestClass : {&ServerRequestClass, &UserRequestClass})
    {
        RequestUse use(*requestClass);
        ASSERT_EQ(S_OK, use.Open(UrlOf(server, "/flickr/authorization/?oauth_token=1-2")));
        ASSERT_EQ(S_OK, use.request->setRequestHeader(Bstr("X-Question").Get(), Bstr("why").Get()));
        EXPECT_EQ(E_INVALIDARG, use.request->setRequestHeader(Bstr("X-A").Get(), Bstr("b\r\nX-C: d").Get()));
        ASSERT_EQ(S_OK, use.Send());
        EXPECT_EQ(200, use.Status());
        BstrOwner words, headers;
        EXPECT_EQ(S_OK, use.request->get_statusText(words.Put()));
        EXPECT_EQ("All right", Ascii(words.View()));
        EXPECT_EQ(S_OK, use.request->getAllResponseHeaders(headers.Put()));
        EXPECT_THAT(Ascii(headers.View()), HasSubstr("X-One: a\r\nx-one: b\r\n"));
        EXPECT_EQ("a, b", use.Header("X-ONE"));
        EXPECT_EQ("", use.Header("x-empty"));
        EXPECT_EQ("(none)", use.Header("X-Two"));
        EXPECT_EQ(Document, use.Text());
        EXPECT_EQ("forty two", use.Read("/answer/word"));
        EXPECT_EQ(E_FAIL, use.Send()); // has been sent
        const SeenRequest seen = server.Requests().back();
        EXPECT_EQ("GET /flickr/authorization/?oauth_token=1-2 HTTP/1.1", seen.line);
        EXPECT_EQ("why", seen.Header("x-question"));
        EXPECT_EQ("(none)", seen.Header("content-length"));
        EXPECT_EQ("(none)", seen.Header("x-c"));
    }
}

TEST_F(RequestExchange, GivesABodyAsBytesAsAStreamAndAsText)
{
    const struct
    {
        std::string body;
        std::u16string text;
    } cases[] = {
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"", u""},
        {"\xEF\xBB\xBFGr\xC3\xB6\xC3\x9F"
         "e \xFF",
         u"Größe \uFFFD"},
        {std::string("\xFF\xFEG\0\xF6\0x", 7), u"Gö"},
        {std::string("\xFE\xFF\0G\0\xF6", 6), u"Gö"},
    };
    for (const auto &c : cases)
    {
        HttpTestServer server(Answer(Reply(c.body)));
        RequestUse use;
        VARIANT value{};
        EXPECT_EQ(E_PENDING, use.request->get_responseBody(&value));
        EXPECT_EQ(E_PENDING, use.request->get_responseStream(&value));
        ASSERT_EQ(S_OK, use.Get(UrlOf(server)));
        BstrOwner text;
        EXPECT_EQ(S_OK, use.request->get_responseText(text.Put()));
        EXPECT_EQ(c.text, text.View());

        ASSERT_EQ(S_OK, use.request->get_responseBody(&value));
        ASSERT_EQ(VT_ARRAY | VT_UI1, V_VT(&value));
        LONG last = 77;
        void *bytes = nullptr;
        EXPECT_EQ(S_OK, SafeArrayGetUBound(V_ARRAY(&value), 1, &last));
        ASSERT_EQ(static_cast<LONG>(c.body.size()) - 1, last);
        EXPECT_EQ(S_OK, SafeArrayAccessData(V_ARRAY(&value), &bytes));
        EXPECT_EQ(c.body, std::string(static_cast<char *>(bytes), c.body.size()));
        SafeArrayUnaccessData(V_ARRAY(&value));
        VariantClear(&value);

        ASSERT_EQ(S_OK, use.request->get_responseStream(&value));
        ASSERT_EQ(VT_UNKNOWN, V_VT(&value));
        ComPtr<IStream> stream;
        EXPECT_EQ(S_OK, V_UNKNOWN(&value)->QueryInterface(__uuidof(IStream), stream.PutVoid()));
        VariantClear(&value);
        char read[100];
        ULONG count = 0;
        stream->Read(read, sizeof(read), &count);
        EXPECT_EQ(c.body, std::string(read, count));
    }
}

TEST_F(RequestExchange, TakesWhateverTheServerAnswersForAReply)
{
    std::string bomb = "<!DOCTYPE a [<!ENTITY b \"bbbbbbbbbb\">";
    for (char name = 'c'; name < 'n'; ++name)
    {
        const std::string inner = std::string("&") + static_cast<char>(name - 1) + ';';
        bomb += std::string("<!ENTITY ") + name + " \"";
        for (int i = 0; i < 8; ++i)
        {
            bomb += inner;
        }
        bomb += "\">";
    }
    const struct
    {
        std::string reply;
        LONG status;
        const char *word;
    } cases[] = {
        {Reply(Document), 200, "forty two"},
        {Reply(Document, "404 Not Found"), 404, "forty two"},
        {Reply("<html><p>no", "500 Oops"), 500, "(none)"},
        {Reply("Not yet."), 200, "(none)"},
        {Reply(""), 200, "(none)"},
        {Reply("{\"word\": 1}", "200"), 200, "(none)"},
        {Reply(bomb + "]><answer><word>&m;</word></answer>"), 200, "(none)"},
        {Reply("<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><answer><word/></answer>"), 200, "(none)"},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n11\r\n<answer><word>for\r\n1a\r\nty "
         "two</word></answer>    \r\n0\r\n\r\n",
         200, "forty two"},
        {"HTTP/1.1 204 No Content\r\n\r\n", 204, "(none)"},
        {"HTTP/1.1 100 Continue\r\n\r\n" + Reply(Document, "201 Made"), 201, "forty two"},
        {Reply("", "302 Found"), 302, "(none)"}, // to nowhere
    };
    for (const auto &c : cases)
    {
        HttpTestServer server(Answer(c.reply));
        RequestUse use;
        EXPECT_EQ(S_OK, use.Get(UrlOf(server))) << c.reply.substr(0, 100);
        EXPECT_EQ(c.status, use.Status());
        EXPECT_EQ(c.word, use.Read("/answer/word")) << c.reply.substr(0, 100);
    }
}

TEST_F(RequestExchange, FollowsRedirectionsWithinTheWeb)
{
    HttpTestServer target(Answer(Reply(Document)));
    std::string location;
    HttpTestServer server([&](Conversation &conversation) {
        while (const auto request = conversation.ReadRequest())
        {
            conversation.WriteReply(request->line.starts_with("POST") ? 303 : 302, "Found", "",
                                    "Location: " + location + "\r\n");
        }
    });
    const struct
    {
        std::string location;
        HRESULT result;
    } cases[] = {
        {UrlOf(target, "/there"), S_OK},
        {"/again", Internet(12156)}, // for ever
        {"file:///etc/passwd", Internet(12156)},
        {"ftp://127.0.0.1/", Internet(12156)},
    };
    for (const auto &c : cases)
    {
        location = c.location;
        RequestUse use;
        ASSERT_EQ(S_OK, use.Open(UrlOf(server)));
        use.request->setRequestHeader(Bstr("Authorization").Get(), Bstr("secret").Get());
        use.request->setRequestHeader(Bstr("X-Kept").Get(), Bstr("kept").Get());
        EXPECT_EQ(c.result, use.Send()) << c.location;
        EXPECT_EQ(SUCCEEDED(c.result) ? "forty two" : "(no document)", use.Read("/answer/word"));
    }
    ASSERT_EQ(1u, target.Requests().size());
    EXPECT_EQ("(none)", target.Requests()[0].Header("authorization"));
    EXPECT_EQ("kept", target.Requests()[0].Header("x-kept"));
    EXPECT_EQ(14u, server.Requests().size()); // the endless one 11 times, the others once
    location = UrlOf(target);
    RequestUse use;
    EXPECT_EQ(S_OK, use.Post(UrlOf(server), "a=b"));
    EXPECT_EQ("a=b", server.Requests().back().body);
    EXPECT_THAT(target.Requests().back().line, StartsWith("GET "));
    EXPECT_EQ("", target.Requests().back().body);
}

TEST_F(RequestExchange, GivesUpOnAServerThatStopsMoving)
{
    HttpTestServer silent([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.WaitForEnd();
    });
    HttpTestServer stuck([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.Write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n<answer>");
        conversation.WaitForEnd();
    });
    for (const HttpTestServer *server : {&silent, &stuck})
    {
        RequestUse use;
        SetTimeouts(use, 60'000, 30'000, 200);
        EXPECT_EQ(Internet(12002), use.Get(UrlOf(*server)));
        EXPECT_EQ(-1, use.Status());
    }
    ComPtr<IServerXMLHTTPRequest> request;
    ASSERT_EQ(S_OK, RequestUse().request->QueryInterface(__uuidof(IServerXMLHTTPRequest), request.PutVoid()));
    EXPECT_EQ(E_INVALIDARG, request->setTimeouts(0, -1, 0, 0));
}

TEST_F(RequestExchange, WaitsForAServerThatIsSlowButMoves)
{
    HttpTestServer slow([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.Write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(std::string(Document).size()) +
                           "\r\n\r\n");
        for (const char *rest = Document; *rest; ++rest)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            conversation.Write(std::string(1, *rest));
        }
        conversation.WaitForEnd();
    });
    RequestUse use;
    SetTimeouts(use, 60'000, 30'000, 2500); // the whole takes longer
    EXPECT_EQ(S_OK, use.Get(UrlOf(slow)));
    EXPECT_EQ("forty two", use.Read("/answer/word"));
}

TEST_F(RequestExchange, FailsByThePlatformsCodes)
{
    HttpTestServer closes([](Conversation &conversation) { conversation.ReadRequest(); });
    HttpTestServer short_([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.Write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n<answer>");
    });
    HttpTestServer garbled(Answer("SSH-2.0-whatever\r\n\r\n"));
    HttpTestServer endless([](Conversation &conversation) {
        conversation.ReadRequest();
        conversation.Write("HTTP/1.1 200 OK\r\n\r\n<answer>");
        conversation.Write(std::string(300'000, 'x'));
    });
    const struct
    {
        std::string url;
        HRESULT result;
    } cases[] = {
        {"http://no-such-host.invalid/", Internet(12007)},
        {"http://127.0.0.1:1/", Internet(12029)},
        {UrlOf(closes), Internet(12030)},
        {UrlOf(short_), Internet(12030)},
        {UrlOf(garbled), Internet(12152)},
        {UrlOf(endless), Internet(12152)},
        {"ftp://127.0.0.1/", Internet(12006)},
        {"file:///etc/passwd", Internet(12006)},
        {"page.xml", Internet(12006)},
        {"http:///page.xml", Internet(12005)},
        {"http://a b/", Internet(12005)},
    };
    for (const auto &c : cases)
    {
        RequestUse use;
        EXPECT_EQ(c.result, use.Get(c.url)) << c.url;
        EXPECT_EQ("(no document)", use.Read("/"));
    }
    VARIANT isAsync{};
    V_VT(&isAsync) = VT_BOOL;
    V_BOOL(&isAsync) = VARIANT_TRUE;
    EXPECT_EQ(E_NOTIMPL, RequestUse().request->open(Bstr("GET").Get(), Bstr("http://a/").Get(), isAsync, {}, {}));
}

TEST_F(RequestExchange, ChecksCertificates)
{
    const char *const trustFile = "msxml-test-ca.pem";
    const TestAuthority authority, stranger("Stranger");
    authority.Save(trustFile);
    const struct
    {
        IssuedCertificate certificate;
        HRESULT result;
    } cases[] = {
        {authority.Issue("DNS:endpoint.example"), S_OK},
        {stranger.Issue("DNS:endpoint.example"), Internet(12045)},
        {authority.Issue("DNS:other.example"), Internet(12038)},
        {authority.Issue("DNS:endpoint.example", -20, -10), Internet(12037)},
    };
    for (const auto &c : cases)
    {
        HttpTestServer server(c.certificate, Answer(Reply(Document)));
        const std::string there = ":127.0.0.1:" + std::to_string(server.Port());
        setenv("HALVORA_CONNECT_TO", (";a.example:1:b.example:2;endpoint.example:443" + there).c_str(), 1);
        setenv("HALVORA_CA_FILE", trustFile, 1);
        RequestUse use;
        EXPECT_EQ(c.result, use.Get("https://endpoint.example/flickr/authorization/?oauth_token=1"));
        EXPECT_EQ(c.result == S_OK ? "forty two" : "(no document)", use.Read("/answer/word"));
        EXPECT_EQ(c.result == S_OK ? 1u : 0u, server.Requests().size());
        unsetenv("HALVORA_CA_FILE"); // then nobody is trusted
        EXPECT_TRUE(FAILED(RequestUse().Get("https://endpoint.example/")));
    }
}

TEST_F(RequestExchange, DoesNotLeaveTheSecureWebByARedirection)
{
    const char *const trustFile = "msxml-test-ca.pem";
    const TestAuthority authority;
    authority.Save(trustFile);
    HttpTestServer plain(Answer(Reply(Document)));
    HttpTestServer secure(authority.Issue("DNS:endpoint.example"),
                          Answer(Reply("", "301 Moved", "Location: " + UrlOf(plain) + "\r\n")));
    setenv("HALVORA_CONNECT_TO", ("endpoint.example:443:127.0.0.1:" + std::to_string(secure.Port())).c_str(), 1);
    setenv("HALVORA_CA_FILE", trustFile, 1);
    EXPECT_EQ(Internet(12156), RequestUse().Get("https://endpoint.example/"));
    EXPECT_EQ(0u, plain.Requests().size());
}

TEST_F(RequestExchange, GoesThroughTheProxyThatIsSet)
{
    HttpTestServer server(Answer(Reply("<by>itself</by>")));
    HttpTestServer proxy([](Conversation &conversation) {
        while (const auto request = conversation.ReadRequest())
        {
            const bool tunnels = request->line.starts_with("CONNECT");
            conversation.WriteReply(tunnels ? 403 : 200, tunnels ? "No" : "OK", "<by>proxy</by>");
        }
    });
    const std::string address = "127.0.0.1:" + std::to_string(proxy.Port());
    const struct
    {
        SXH_PROXY_SETTING setting;
        std::string servers, bypass;
        const char *expected;
    } cases[] = {
        {SXH_PROXY_SET_DIRECT, "", "", "itself"},
        {SXH_PROXY_SET_PRECONFIG, "", "", "itself"},
        {SXH_PROXY_SET_PROXY, address, "", "proxy"},
        {SXH_PROXY_SET_PROXY, "http=" + address + ";https=127.0.0.1:1", "*.example", "proxy"},
        {SXH_PROXY_SET_PROXY, "https=127.0.0.1:1", "", "itself"},
        {SXH_PROXY_SET_PROXY, address, "<local>;127.*", "itself"},
    };
    setenv("http_proxy", "http://127.0.0.1:1", 1); // not for servers
    for (const auto &c : cases)
    {
        RequestUse use;
        ASSERT_EQ(S_OK, SetProxy(use, c.setting, c.servers, c.bypass));
        EXPECT_EQ(S_OK, use.Get(UrlOf(server)));
        EXPECT_EQ(c.expected, use.Read("/by")) << c.servers << ' ' << c.bypass;
    }
    EXPECT_EQ("GET " + UrlOf(server) + " HTTP/1.1", proxy.Requests()[0].line);

    RequestUse secure;
    ASSERT_EQ(S_OK, SetProxy(secure, SXH_PROXY_SET_PROXY, address));
    EXPECT_TRUE(FAILED(secure.Get("https://endpoint.example/")));
    EXPECT_EQ("CONNECT endpoint.example:443 HTTP/1.1", proxy.Requests().back().line);

    EXPECT_EQ(E_INVALIDARG, SetProxy(secure, static_cast<SXH_PROXY_SETTING>(3)));
    EXPECT_EQ(E_INVALIDARG, SetProxy(secure, SXH_PROXY_SET_PROXY));
    // The user's request goes by the user's settings.
    setenv("http_proxy", ("http://" + address).c_str(), 1);
    RequestUse user(UserRequestClass);
    EXPECT_EQ(S_OK, user.Get(UrlOf(server)));
    EXPECT_EQ("proxy", user.Read("/by"));
}
} // namespace
