// Fakes of the three web components, registered as class objects of the test program, so that the code under
// test creates them like the real ones. They record every call, answer requests with prepared replies, and can
// fail at any call.
//
// Creations are "Create IOAuthWebClient" and so on. Of the arguments, a null text is "(null)", request parameters
// are "name=value&name=value", any other object is "(object)"; out parameters are left out.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/ClassInPlace.h"

#include "WebComponents.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class FakeWebComponents : public CallRecord
{
public:
    FakeWebComponents();
    FakeWebComponents(const FakeWebComponents &) = delete;
    FakeWebComponents &operator=(const FakeWebComponents &) = delete;

    // Forgets the bytes, too; the prepared answers stay.
    void Clear();

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
    HRESULT TakeAnswer(IUnknown **reply);

private:
    struct Prepared
    {
        HRESULT Result;
        ComPtr<IUnknown> Reply;
    };

    std::deque<Prepared> m_answers;
    ClassInPlace m_webClient;
    ClassInPlace m_parameters;
    ClassInPlace m_form;
};
