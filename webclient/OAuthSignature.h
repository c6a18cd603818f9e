// OAuth 1.0a signatures by HMAC-SHA1 (RFC 5849). Pure functions of their arguments.
//
// A signature proves that a request comes from an application and a user without sending their secrets. Both
// sides write the request as one canonical text, the base string: method, address, and all parameters, encoded
// and sorted. The keyed hash of that text, under the two secrets, travels with the request; the service computes
// it again and compares. So the signed bytes must be exactly the bytes that are sent, and the file of an upload,
// which is no parameter, isn't covered. A nonce and the time make every request different: the service refuses
// one that it has seen, and a request that is sent again has to be signed again.
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

// What makes each request different from all others.
struct OAuthMoment
{
    std::string nonce;
    std::string timestamp; // seconds since 1970

    static OAuthMoment Now();
};

// RFC 5849, 3.4.1. parameters are all that the request carries except those in the query of the address.
SecretText SignatureBaseString(std::string_view method, const RequestUrl &url, const ParameterList &parameters);

// RFC 5849, 3.4.2, in Base64.
std::string SignText(std::string_view baseString, std::string_view applicationSecret,
                     std::string_view tokenSecret);

// The value of the Authorization header of a request whose body holds signedParameters. further are protocol parameters
// that only some requests have: "oauth_callback", "oauth_verifier".
SecretText ComposeAuthorization(std::string_view method, const RequestUrl &url, const OAuthIdentity &identity,
                                const OAuthMoment &moment, const ParameterList &signedParameters,
                                const ParameterList &further);
