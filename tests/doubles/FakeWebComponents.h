// Fakes of the three web components, registered as class objects of the test program, so that the code under
// test creates them like the real ones. They record every call in order, answer requests with prepared
// replies, and can fail at any call.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"
#include "tests/doubles/ClassInPlace.h"

#include "WebComponents.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One call. A null text is "(null)", request parameters are "name=value&name=value", any other object is
// "(object)"; out parameters are left out.
struct WebCall
{
    std::string Operation;
    std::vector<WideText> Arguments;
};

class FakeWebComponents
{
public:
    FakeWebComponents();
    FakeWebComponents(const FakeWebComponents &) = delete;
    FakeWebComponents &operator=(const FakeWebComponents &) = delete;

    // Everything so far. Creations are "Create IOAuthWebClient" and so on.
    std::vector<WebCall> Calls() const;
    std::vector<WebCall> CallsOf(std::string_view operation) const;

    // "RestRequest", "Add" ... of everything so far.
    std::vector<std::string> Operations() const;
    void ForgetCalls();

    // The call of that number, counted from 1 over all calls to come, or the nth one of an operation, fails
    // with code and does nothing else.
    void FailCall(size_t number, HRESULT code);
    void FailOperation(const std::string &operation, HRESULT code, size_t nth = 1);

    // Answers of RestRequest and UploadRequest, in order. A request without one fails the test.
    void Answer(WideView xml);                               // S_OK and a document
    void AnswerWith(HRESULT result, ComPtr<IUnknown> reply); // the reply may be null

    // Called within UploadRequest after the report UPLOAD_BEGIN, with the callback and the body's length; a
    // failure ends the request with its code. Unless it is set, one report covers the whole body.
    std::function<HRESULT(IUploadProgressCallback *callback, UINT32 bodyLength)> DuringUpload;

    // What GetBodyLength and GetMimeTypeForFile give, in place of the real length and "image/jpeg".
    std::optional<UINT32> BodyLength;
    WideText MimeType = TEXT("image/jpeg");

    // What GetAuthorizationUrl and GetAccessToken give.
    WideText AuthorizationUrl = TEXT("http://www.flickr.com/services/oauth/authorize?oauth_token=request-token");
    WideText AccessToken = TEXT("access-token");
    WideText AccessTokenSecret = TEXT("access-secret");

    // Bytes of each file part and of each uploaded body.
    std::vector<std::string> FileParts;
    std::vector<std::string> Bodies;

    // For the fakes themselves.
    HRESULT Record(std::string operation, std::vector<WideText> arguments = {});
    HRESULT TakeAnswer(IUnknown **reply);

private:
    struct Prepared
    {
        HRESULT Result;
        ComPtr<IUnknown> Reply;
    };

    mutable std::mutex m_lock;
    std::vector<WebCall> m_calls;
    std::map<size_t, HRESULT> m_failingCalls;
    std::map<std::string, std::map<size_t, HRESULT>> m_failingOperations;
    std::map<std::string, size_t> m_operationCounts;
    size_t m_callCount = 0;
    std::deque<Prepared> m_answers;
    ClassInPlace m_webClient;
    ClassInPlace m_parameters;
    ClassInPlace m_form;
};
