#include "tests/webclient/ClientUse.h"

#include "com/BstrOwner.h"
#include "com/TextConversion.h"
#include "tests/platform/msxml/DocumentUse.h"
#include "webclient/OAuthSignature.h"
#include "webclient/RequestParameters.h"
#include "webclient/RequestUrl.h"

#include <gtest/gtest.h>

void SetUpClient(IOAuthWebClient &client)
{
    EXPECT_EQ(client.SetService(TEXT("Halvora/1.2.3.4"), TEXT("https://api.flickr.com/services/rest"),
                                TEXT("HMAC-SHA1"), TEXT("application-key"), TEXT("application-secret"),
                                TEXT("http://www.flickr.com/services/oauth/request_token"),
                                TEXT("http://www.flickr.com/services/oauth/authorize"),
                                TEXT("http://www.flickr.com/services/oauth/access_token"),
                                TEXT("http://authorization.halvora.example/flickr/authorization/"), 0),
              S_OK);
    EXPECT_EQ(client.SetAccessToken(TEXT("the-token"), TEXT("token-secret")), S_OK);
}

ComPtr<IRequestParameters> Parameters(const std::vector<std::pair<const WCHAR *, const WCHAR *>> &pairs)
{
    auto parameters = CRequestParameters::Make();
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

std::string DocumentText(IUnknown *document, const char *path)
{
    const auto loaded = QueryFor<IXMLDOMDocument2>(document);
    return loaded ? ToUtf8(ReadText(*loaded.Get(), FromUtf8(path).c_str())) : "(no document)";
}

bool IsSignedRight(const std::string &header, const std::string &method, const std::string &url,
                   ParameterList parameters, const std::string &tokenSecret)
{
    std::string signature;
    EXPECT_TRUE(header.starts_with("OAuth ")) << header;
    for (size_t at = 6; at < header.size();)
    {
        const size_t equals = header.find("=\"", at);
        const size_t end = header.find('"', equals + 2);
        const std::string name = header.substr(at, equals - at);
        const SecretText value = FormDecode(header.substr(equals + 2, end - equals - 2));
        if (name == "oauth_signature")
        {
            signature = value.View();
        }
        else
        {
            parameters.push_back({name, value});
        }
        at = end + 3; // behind '", '
    }
    const SecretText base = SignatureBaseString(method, RequestUrl::Parse(url), parameters);
    return signature == SignText(base.View(), "application-secret", tokenSecret);
}
