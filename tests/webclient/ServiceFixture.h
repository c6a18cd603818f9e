// A client that believes to talk to api.flickr.com, and a TLS server on this machine that is it.
#pragma once

#include "WebComponents.h"
#include "com/ComObject.h"
#include "tests/server/TestCertificates.h"
#include "tests/server/HttpTestServer.h"
#include "webclient/HttpTransport.h"
#include "webclient/RequestUrl.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Keeps a record of the reports and answers as it is told.
class RecordedProgress final : public ComObject<RecordedProgress, IUploadProgressCallback>
{
public:
    struct ProgressEntry
    {
        UINT32 code, total, done;
    };
    using Answer = std::function<HRESULT(const ProgressEntry &)>;

    explicit RecordedProgress(Answer answer = nullptr) : m_answer(std::move(answer)) {}

    STDMETHODIMP OnUploadProgress(UINT32 code, UINT32 total, UINT32 done) noexcept override
    {
        entries.push_back({code, total, done});
        return m_answer ? m_answer(entries.back()) : S_OK;
    }

    std::vector<ProgressEntry> entries;

private:
    Answer m_answer;
};

struct UploadOutcome
{
    HRESULT result = E_FAIL;
    ComPtr<IUnknown> reply;

    std::string Text(const char *path) const;
    // Result, status words and description of an HttpError, for messages and comparisons.
    std::string Description() const { return Text("/HttpError/Description"); }
};

class ServiceFixture : public testing::Test
{
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    HttpTestServer &StartServer(HttpTestServer::Script script = HttpTestServer::AnswerAll);
    HttpTestServer &StartServer(const IssuedCertificate &certificate, HttpTestServer::Script script);
    static void ConnectTo(unsigned port);

    // From the registered module, as everybody gets it.
    static ComPtr<IOAuthWebClient> Client();

    static ComPtr<IRequestParameters>
    Parameters(const std::vector<std::pair<const WCHAR *, const WCHAR *>> &pairs);

    static UploadOutcome Upload(IOAuthWebClient *client, IStream *body, UINT32 length,
                                IUploadProgressCallback *callback = nullptr, IRequestParameters *fields = nullptr,
                                IRequestParameters *headers = nullptr,
                                const WCHAR *url = TEXT("https://api.flickr.com/services/upload/"));
    static UploadOutcome UploadText(IOAuthWebClient *client, const std::string &body);
    static UploadOutcome CallMethod(IOAuthWebClient *client, IRequestParameters *fields);

    static const TestAuthority &Authority();

    std::unique_ptr<HttpTestServer> m_server;
};
