#include "tests/webclient/SignatureCheck.h"

#include "webclient/OAuthSignature.h"
#include "webclient/PercentEncoding.h"
#include "webclient/RequestUrl.h"

#include <gtest/gtest.h>

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
