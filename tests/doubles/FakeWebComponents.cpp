#include "tests/doubles/FakeWebComponents.h"

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "tests/doubles/MemoryStream.h"
#include "tests/doubles/ReplyDocuments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace
{
std::string Text(LPCWSTR text)
{
    return text ? Narrow(text) : "(null)";
}

std::string Text(UINT_PTR number)
{
    return std::to_string(number);
}

std::string Present(IUnknown *object)
{
    return object ? "(object)" : "(null)";
}

// Hands out a text where the call succeeds.
HRESULT Give(HRESULT result, BSTR *target, WideView text)
{
    *target = SUCCEEDED(result) ? BstrOwner(text).Detach() : nullptr;
    return result;
}

std::string ReadAll(IStream *stream, size_t most)
{
    std::string content;
    char buffer[4096];
    ULONG done = 0;
    do
    {
        const auto wanted = static_cast<ULONG>(std::min(most - content.size(), sizeof(buffer)));
        if (FAILED(stream->Read(buffer, wanted, &done)))
        {
            break;
        }
        content.append(buffer, done);
    } while (done != 0 && content.size() < most);
    return content;
}

class FakeParameters final : public ComObject<FakeParameters, IRequestParameters>
{
public:
    explicit FakeParameters(FakeWebComponents &record) : m_record(record) {}

    STDMETHODIMP Add(LPCWSTR name, VARIANT value) override
    {
        const std::string text = V_VT(&value) == VT_BSTR ? Text(V_BSTR(&value))
                                 : V_VT(&value) == VT_I4 ? std::to_string(V_I4(&value))
                                                         : std::to_string(V_UI4(&value));
        if (V_VT(&value) != VT_BSTR && V_VT(&value) != VT_I4 && V_VT(&value) != VT_UI4)
        {
            ADD_FAILURE() << "a parameter of type " << V_VT(&value);
        }
        const HRESULT result = m_record.Enter("Add", {Text(name), text});
        if (SUCCEEDED(result))
        {
            m_list += (m_list.empty() ? "" : "&") + Narrow(name) + "=" + text;
        }
        return result;
    }

    static std::string List(IRequestParameters *parameters)
    {
        auto *fake = dynamic_cast<FakeParameters *>(parameters);
        return fake ? fake->m_list : "(null)";
    }

private:
    FakeWebComponents &m_record;
    std::string m_list;
};

// Its body is a line "name=value" for each field and each file's bytes as they are.
class FakeForm final : public ComObject<FakeForm, IMultipartFormData>
{
public:
    explicit FakeForm(FakeWebComponents &record) : m_record(record) {}

    STDMETHODIMP AddNumberField(LPCWSTR name, UINT32 value) override
    {
        m_body += Narrow(name) + "=" + std::to_string(value) + "\n";
        return m_record.Enter("AddNumberField", {Text(name), Text(value)});
    }

    STDMETHODIMP AddTextField(LPCWSTR name, LPCWSTR value) override
    {
        m_body += Narrow(name) + "=" + Narrow(value ? value : TEXT("")) + "\n";
        return m_record.Enter("AddTextField", {Text(name), Text(value)});
    }

    STDMETHODIMP AddFilePart(LPCWSTR name, IStream *content, LPCWSTR mimeType, LPCWSTR fileName,
                             UINT_PTR reserved1, UINT_PTR reserved2) override
    {
        const HRESULT result = m_record.Enter("AddFilePart", {Text(name), Present(content), Text(mimeType),
                                                              Text(fileName), Text(reserved1), Text(reserved2)});
        if (SUCCEEDED(result) && content != nullptr)
        {
            m_record.FileParts.push_back(ReadAll(content, SIZE_MAX));
            m_body += m_record.FileParts.back();
        }
        return result;
    }

    STDMETHODIMP GetBodyLength(UINT32 *length) override
    {
        *length = m_record.BodyLength.value_or(static_cast<UINT32>(m_body.size()));
        return m_record.Enter("GetBodyLength");
    }

    STDMETHODIMP GetContentType(BSTR *contentType) override
    {
        return Give(m_record.Enter("GetContentType"), contentType, TEXT("multipart/form-data; boundary=fake"));
    }

    HRESULT QueryFurther(REFIID iid, void **object)
    {
        if (iid != __uuidof(IStream))
        {
            return E_NOINTERFACE;
        }
        const HRESULT result = m_record.Enter("QueryInterface IStream");
        return FAILED(result) ? result : MemoryStream::CreateInstance(nullptr, iid, object, m_body);
    }

private:
    FakeWebComponents &m_record;
    std::string m_body;
};

class FakeWebClient final : public ComObject<FakeWebClient, IOAuthWebClient>
{
public:
    explicit FakeWebClient(FakeWebComponents &record) : m_record(record) {}

    STDMETHODIMP SetService(LPCWSTR userAgent, LPCWSTR restEndpoint, LPCWSTR signatureMethod,
                            LPCWSTR applicationKey, LPCWSTR applicationSecret, LPCWSTR requestTokenUrl,
                            LPCWSTR authorizeUrl, LPCWSTR accessTokenUrl, LPCWSTR callbackUrl,
                            UINT_PTR reserved) override
    {
        return m_record.Enter("SetService",
                              {Text(userAgent), Text(restEndpoint), Text(signatureMethod), Text(applicationKey),
                               Text(applicationSecret), Text(requestTokenUrl), Text(authorizeUrl),
                               Text(accessTokenUrl), Text(callbackUrl), Text(reserved)});
    }

    STDMETHODIMP GetAuthorizationUrl(UINT32 flags, IRequestParameters *parameters, BSTR *url) override
    {
        return Give(m_record.Enter("GetAuthorizationUrl", {Text(flags), FakeParameters::List(parameters)}), url,
                    m_record.AuthorizationUrl);
    }

    STDMETHODIMP GetAccessToken(UINT32 flags, LPCWSTR verifier, BSTR *token, BSTR *tokenSecret) override
    {
        const HRESULT result = m_record.Enter("GetAccessToken", {Text(flags), Text(verifier)});
        Give(result, token, m_record.AccessToken);
        return Give(result, tokenSecret, m_record.AccessTokenSecret);
    }

    STDMETHODIMP SetAccessToken(LPCWSTR token, LPCWSTR tokenSecret) override
    {
        return m_record.Enter("SetAccessToken", {Text(token), Text(tokenSecret)});
    }

    STDMETHODIMP RestRequest(LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                             IRequestParameters *fields, UINT_PTR reserved, IUnknown **reply) override
    {
        *reply = nullptr;
        const HRESULT result =
            m_record.Enter("RestRequest", {Text(resource), Text(method), FakeParameters::List(headers),
                                           FakeParameters::List(fields), Text(reserved)});
        return FAILED(result) ? result : m_record.TakeAnswer(reply);
    }

    STDMETHODIMP UploadRequest(LPCWSTR url, LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                               IRequestParameters *query, IRequestParameters *fields, IStream *body,
                               UINT32 bodyLength, IUploadProgressCallback *callback, UINT_PTR reserved,
                               IUnknown **reply) override
    {
        *reply = nullptr;
        HRESULT result = m_record.Enter("UploadRequest",
                                        {Text(url), Text(resource), Text(method), FakeParameters::List(headers),
                                         FakeParameters::List(query), FakeParameters::List(fields), Present(body),
                                         Text(bodyLength), Present(callback), Text(reserved)});
        if (FAILED(result))
        {
            return result;
        }
        m_record.Bodies.push_back(body ? ReadAll(body, bodyLength) : std::string());
        if (callback != nullptr)
        {
            result = callback->OnUploadProgress(UPLOAD_BEGIN, bodyLength, 0);
        }
        if (SUCCEEDED(result) && m_record.DuringUpload)
        {
            result = m_record.DuringUpload(callback, bodyLength);
        }
        else if (SUCCEEDED(result) && callback != nullptr)
        {
            result = callback->OnUploadProgress(UPLOAD_BYTES, bodyLength, bodyLength);
        }
        return FAILED(result) ? result : m_record.TakeAnswer(reply);
    }

    STDMETHODIMP GetMimeTypeForFile(LPCWSTR fileName, BSTR *mimeType) override
    {
        return Give(m_record.Enter("GetMimeTypeForFile", {Text(fileName)}), mimeType, m_record.MimeType);
    }

    STDMETHODIMP Reserved1() override { return Unexpected(); }
    STDMETHODIMP Reserved2() override { return Unexpected(); }
    STDMETHODIMP Reserved3() override { return Unexpected(); }

private:
    static HRESULT Unexpected()
    {
        ADD_FAILURE() << "a reserved operation was called";
        return E_NOTIMPL;
    }

    FakeWebComponents &m_record;
};

template <class Fake>
ClassInPlace::Create Creating(FakeWebComponents &record, const char *operation)
{
    return [&record, operation](REFIID iid, void **object) {
        const HRESULT result = record.Enter(operation);
        return FAILED(result) ? result : Fake::CreateInstance(nullptr, iid, object, record);
    };
}
} // namespace

FakeWebComponents::FakeWebComponents()
    : m_webClient(CLSID_OAuthWebClient, Creating<FakeWebClient>(*this, "Create IOAuthWebClient")),
      m_parameters(CLSID_RequestParameters, Creating<FakeParameters>(*this, "Create IRequestParameters")),
      m_form(CLSID_MultipartFormData, Creating<FakeForm>(*this, "Create IMultipartFormData"))
{
}

void FakeWebComponents::Clear()
{
    CallRecord::Clear();
    FileParts.clear();
    Bodies.clear();
}

void FakeWebComponents::Answer(WideView xml)
{
    AnswerWith(S_OK, MakeDocument(xml));
}

void FakeWebComponents::AnswerWith(HRESULT result, ComPtr<IUnknown> reply)
{
    m_answers.push_back({result, std::move(reply)});
}

HRESULT FakeWebComponents::TakeAnswer(IUnknown **reply)
{
    if (m_answers.empty())
    {
        ADD_FAILURE() << "a request for which no answer was prepared";
        return E_UNEXPECTED;
    }
    Prepared answer = std::move(m_answers.front());
    m_answers.pop_front();
    *reply = answer.Reply.Detach();
    return answer.Result;
}
