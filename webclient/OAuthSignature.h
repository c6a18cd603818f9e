// OAuth 1.0a signatures by HMAC-SHA1 (RFC 5849). Pure functions of their arguments.
#pragma once

#include "webclient/RequestUrl.h"
#include "webclient/SecretText.h"

#include <string>
#include <string_view>

// Who signs. Token and its secret are empty until there are some.
struct OAuthIdentity
{
    SecretText applicationKey;
    SecretText applicationSecret;
    SecretText token;
    SecretText tokenSecret;
};

// What makes each request another one.
struct OAuthMoment
{
    std::string nonce;
    std::string timestamp; // seconds since 1970

    static OAuthMoment Now();
};

// RFC 5849, 3.4.1: parameters are all that the request carries but those of the address's query,
// which are taken from there.
SecretText SignatureBaseString(std::string_view method, const RequestUrl &url, const ParameterList &parameters);

// RFC 5849, 3.4.2, in Base64.
std::string SignText(std::string_view baseString, std::string_view applicationSecret,
                     std::string_view tokenSecret);

// The value of the Authorization header of a request that carries signedParameters in its body.
// further are protocol parameters that only some requests have: "oauth_callback", "oauth_verifier".
SecretText ComposeAuthorization(std::string_view method, const RequestUrl &url, const OAuthIdentity &identity,
                                const OAuthMoment &moment, const ParameterList &signedParameters,
                                const ParameterList &further);
