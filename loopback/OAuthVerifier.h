// The service's side of OAuth 1.0a (RFC 5849). Application and service share two secrets, that of the
// application and that of the token. The application signs method, URL and all parameters with an HMAC
// whose key is made of both; the service computes the same code and compares. A timestamp and a nonce are
// among the signed parameters: a request is accepted only within a window around its timestamp, and only
// once in that window, so nobody can send a recorded request again. Thread-safe.
#pragma once

#include "loopback/FormFields.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace loopback
{

struct SignedRequest
{
    std::string method;
    // Scheme, host and path as requested, without the query.
    std::string url;
    // The value of the "Authorization" header, or empty.
    std::string authorization;
    // Every decoded parameter of the query and of the body, without files.
    FormFields parameters;
};

struct OAuthOutcome
{
    bool accepted = false;
    // The request has no OAuth parameter at all.
    bool isUnsigned = false;
    // If refused: the text for the client, "oauth_problem=...".
    std::string problem;
    std::string consumerKey;
    // Empty if the application signed the request without a token.
    std::string token;
    // If accepted: all signed parameters, decoded.
    FormFields parameters;
};

// The text whose HMAC is the signature: method, URL and sorted parameters (RFC 5849, 3.4.1).
std::string SignatureBase(const std::string &method, const std::string &url, const FormFields &parameters);

class OAuthVerifier
{
public:
    using SecretLookup = std::function<std::optional<std::string>(const std::string &)>;
    using Clock = std::function<std::int64_t()>;

    // The lookups give the secret of a consumer key and of a token; the clock counts Unix seconds.
    OAuthVerifier(SecretLookup consumerSecret, SecretLookup tokenSecret, Clock clock);

    OAuthOutcome Check(const SignedRequest &request);

private:
    bool IsNonceFresh(const std::string &nonce, std::int64_t now);
    void RememberNonce(const std::string &nonce, std::int64_t now);

    SecretLookup m_consumerSecret;
    SecretLookup m_tokenSecret;
    Clock m_clock;
    std::mutex m_mutex;
    std::set<std::string> m_nonces;
    std::deque<std::pair<std::int64_t, std::string>> m_nonceAges;
};

} // namespace loopback
