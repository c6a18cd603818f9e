#include "account/AccountQueries.h"

#include "account/AccountRecord.h"
#include "account/ServiceReply.h"
#include "account/WebClientFactory.h"
#include "com/BstrOwner.h"
#include "core/VersionBlock.h"

#include "WebComponents.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <string>

namespace
{
using Document = ComPtr<IXMLDOMDocument2>;

// Sends a request whose only parameter is the method. Only a success replaces reply; a success without a
// document leaves it null.
HRESULT CallMethod(IOAuthWebClient &client, const WCHAR *method, Document &reply)
{
    ComPtr<IRequestParameters> parameters;
    HRESULT result = CoCreateInstance(CLSID_RequestParameters, nullptr, CLSCTX_ALL, __uuidof(IRequestParameters),
                                      parameters.PutVoid());
    if (FAILED(result))
    {
        return result;
    }
    const BstrOwner name{WideView(method)};
    VARIANT value{};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = name.Get();
    result = parameters->Add(TEXT("method"), value);
    if (FAILED(result))
    {
        return result;
    }
    ComPtr<IUnknown> answer;
    result = client.RestRequest(nullptr, TEXT("POST"), nullptr, parameters.Get(), 0, answer.Put());
    if (SUCCEEDED(result))
    {
        reply = QueryFor<IXMLDOMDocument2>(answer.Get());
    }
    return result;
}

// Decimal, up to the first character that is no digit; out of range gives the nearest limit. Nothing if
// the text doesn't begin with a number.
std::optional<INT64> ParseNumber(WideView text)
{
    std::string digits;
    std::ranges::transform(text, std::back_inserter(digits),
                           [](WCHAR c) { return c < 0x80 ? static_cast<char>(c) : ' '; });
    INT64 number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (parsed.ec == std::errc::result_out_of_range)
    {
        return digits[0] == '-' ? std::numeric_limits<INT64>::min() : std::numeric_limits<INT64>::max();
    }
    return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

// Leaves number unchanged unless the node holds one.
HRESULT ReadNumber(const Document &reply, const WCHAR *expression, std::optional<INT64> &number)
{
    BstrOwner text;
    const HRESULT result = ReadNodeText(reply.Get(), expression, text);
    if (const auto parsed = ParseNumber(text.View()))
    {
        number = parsed;
    }
    return result;
}

INT64 AllowanceLeft(INT64 maximum, INT64 used)
{
    // A maximum of 0 is the service's way to say "no limit".
    if (maximum == 0)
    {
        return UnlimitedUpload;
    }
    return used >= maximum ? 0 : maximum - std::max<INT64>(used, 0);
}

HRESULT ReadBandwidth(const Document &reply, INT64 &left)
{
    std::optional<INT64> maximum;
    std::optional<INT64> used;
    HRESULT result = ReadNumber(reply, TEXT("/rsp/user/bandwidth/@maxbytes"), maximum);
    if (SUCCEEDED(result))
    {
        result = ReadNumber(reply, TEXT("/rsp/user/bandwidth/@usedbytes"), used);
    }
    if (maximum && (used || *maximum == 0))
    {
        left = AllowanceLeft(*maximum, used.value_or(0));
    }
    return result;
}
} // namespace

HRESULT RefreshAccount(AccountRecord &account, const VersionBlock &version)
{
    const auto client = CreateWebClient(account, version);
    if (!client)
    {
        return E_UNEXPECTED;
    }
    Document reply;
    HRESULT result = CallMethod(*client.Get(), TEXT("flickr.auth.oauth.checkToken"), reply);
    if (FAILED(result))
    {
        return result;
    }
    if (!reply)
    {
        return E_UNEXPECTED;
    }
    if (ReadOutcome(reply.Get()) == S_OK &&
        SUCCEEDED(ReadNodeText(reply.Get(), TEXT("/rsp/oauth/user/@username"), account.UserName)))
    {
        ReadNodeText(reply.Get(), TEXT("/rsp/oauth/user/@fullname"), account.FullName);
    }
    // If this request fails, reply is still the first one, in which the address isn't found.
    result = CallMethod(*client.Get(), TEXT("flickr.urls.getUserPhotos"), reply);
    if (!reply)
    {
        return E_UNEXPECTED;
    }
    if (ReadOutcome(reply.Get()) == S_OK)
    {
        ReadNodeText(reply.Get(), TEXT("/rsp/user/@url"), account.PhotosUrl);
    }
    return QueryUploadStatus(account, version);
}

HRESULT QueryUploadStatus(AccountRecord &account, const VersionBlock &version)
{
    account.AccountRefreshed = true;
    const auto client = CreateWebClient(account, version);
    if (!client)
    {
        return E_UNEXPECTED;
    }
    Document reply;
    HRESULT result = CallMethod(*client.Get(), TEXT("flickr.people.getUploadStatus"), reply);
    if (SUCCEEDED(result) && !reply)
    {
        return E_UNEXPECTED;
    }
    // Without a document the failure is E_POINTER, whatever the request's own was.
    result = ReadOutcome(reply.Get());
    bool isPro = false;
    if (SUCCEEDED(result))
    {
        BstrOwner text;
        result = ReadNodeText(reply.Get(), TEXT("/rsp/user/@ispro"), text);
        isPro = text.View().starts_with(WCHAR{'1'});
    }
    account.AccountType = BstrOwner(isPro ? TEXT("Pro") : TEXT("Basic"));
    if (SUCCEEDED(result))
    {
        std::optional<INT64> bytes;
        result = ReadNumber(reply, TEXT("/rsp/user/filesize/@maxbytes"), bytes);
        account.MaxFileSize = bytes.value_or(account.MaxFileSize);
    }
    if (isPro)
    {
        account.UploadLeftThisMonth = UnlimitedUpload;
    }
    else if (SUCCEEDED(result))
    {
        result = ReadBandwidth(reply, account.UploadLeftThisMonth);
    }
    return result;
}

HRESULT AnswerCanPublish(AccountRecord &account, const VersionBlock &version, bool withCheck)
{
    if (!account.IsAuthorized())
    {
        return S_FALSE;
    }
    if (!withCheck)
    {
        return S_OK;
    }
    return SUCCEEDED(QueryUploadStatus(account, version)) && account.UploadLeftThisMonth != 0 ? S_OK : S_FALSE;
}
