#include "tests/webclient/ServiceFixture.h"

#include "com/BstrOwner.h"
#include "platform/ole32/ClassServers.h"
#include "tests/webclient/DocumentText.h"
#include "tests/webclient/ModuleFile.h"
#include "tests/webclient/ScriptedStream.h"
#include "webclient/OAuthSignature.h"
#include "webclient/OAuthWebClient.h"
#include "webclient/PercentEncoding.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace
{
const std::string TrustFile = "webclient-test-ca." + std::to_string(getpid()) + ".pem"; // of this process alone
} // namespace

std::string UploadOutcome::Text(const char *path) const
{
    return DocumentText(reply.Get(), path);
}

const TestAuthority &ServiceFixture::Authority()
{
    static const TestAuthority authority;
    return authority;
}

void ServiceFixture::SetUpTestSuite()
{
    const std::filesystem::path module = ModulePath("Halvora.WebComponents");
    SetClassServers(
        {{CLSID_OAuthWebClient, module}, {CLSID_RequestParameters, module}, {CLSID_MultipartFormData, module}});
    Authority().Save(TrustFile);
}

void ServiceFixture::TearDownTestSuite()
{
    std::filesystem::remove(TrustFile);
}

void ServiceFixture::SetUp()
{
    setenv("HALVORA_CA_FILE", TrustFile.c_str(), 1);
}

void ServiceFixture::TearDown()
{
    m_server.reset();
    unsetenv("HALVORA_CONNECT_TO");
    unsetenv("HALVORA_CA_FILE");
}

HttpTestServer &ServiceFixture::StartServer(HttpTestServer::Script script)
{
    static const IssuedCertificate Usual = Authority().Issue("DNS:*.flickr.com,DNS:flickr.com");
    return StartServer(Usual, std::move(script));
}

HttpTestServer &ServiceFixture::StartServer(const IssuedCertificate &certificate, HttpTestServer::Script script)
{
    m_server = std::make_unique<HttpTestServer>(certificate, std::move(script));
    ConnectTo(m_server->Port());
    return *m_server;
}

void ServiceFixture::ConnectTo(unsigned port)
{
    const std::string there = ":127.0.0.1:" + std::to_string(port);
    const std::string entries = "api.flickr.com:443" + there + ";;www.flickr.com:443" + there;
    setenv("HALVORA_CONNECT_TO", entries.c_str(), 1);
}

ComPtr<IOAuthWebClient> ServiceFixture::Client()
{
    ComPtr<IOAuthWebClient> client;
    EXPECT_EQ(CoCreateInstance(CLSID_OAuthWebClient, nullptr, 23, __uuidof(IOAuthWebClient), client.PutVoid()),
              S_OK);
    EXPECT_EQ(client->SetService(TEXT("Halvora/1.2.3.4"), TEXT("https://api.flickr.com/services/rest"),
                                 TEXT("HMAC-SHA1"), TEXT("application-key"), TEXT("application-secret"),
                                 TEXT("http://www.flickr.com/services/oauth/request_token"),
                                 TEXT("http://www.flickr.com/services/oauth/authorize"),
                                 TEXT("http://www.flickr.com/services/oauth/access_token"),
                                 TEXT("http://authorization.halvora.example/flickr/authorization/"), 0),
              S_OK);
    EXPECT_EQ(client->SetAccessToken(TEXT("the-token"), TEXT("token-secret")), S_OK);
    return client;
}

ComPtr<IRequestParameters>
ServiceFixture::Parameters(const std::vector<std::pair<const WCHAR *, const WCHAR *>> &pairs)
{
    ComPtr<IRequestParameters> parameters;
    EXPECT_EQ(
        CoCreateInstance(CLSID_RequestParameters, nullptr, 23, __uuidof(IRequestParameters), parameters.PutVoid()),
        S_OK);
    for (const auto &[name, value] : pairs)
    {
        const BstrOwner text{WideView(value)};
        VARIANT variant{};
        V_VT(&variant) = VT_BSTR;
        V_BSTR(&variant) = text.Get();
        EXPECT_EQ(parameters->Add(name, variant), S_OK);
    }
    return parameters;
}

UploadOutcome ServiceFixture::Upload(IOAuthWebClient *client, IStream *body, UINT32 length,
                                     IUploadProgressCallback *callback, IRequestParameters *fields,
                                     IRequestParameters *headers, const WCHAR *url)
{
    UploadOutcome outcome;
    outcome.result = client->UploadRequest(url, nullptr, TEXT("POST"), headers, nullptr, fields, body, length,
                                           callback, 0, outcome.reply.Put());
    return outcome;
}

UploadOutcome ServiceFixture::UploadText(IOAuthWebClient *client, const std::string &body)
{
    return Upload(client, ScriptedStream::Make(body).Get(), static_cast<UINT32>(body.size()));
}

UploadOutcome ServiceFixture::CallMethod(IOAuthWebClient *client, IRequestParameters *fields)
{
    UploadOutcome outcome;
    outcome.result = client->RestRequest(nullptr, TEXT("POST"), nullptr, fields, 0, outcome.reply.Put());
    return outcome;
}
