// The service's side of OAuth 1.0a (RFC 5849): is this request signed by a known application for a
// known token, now, and for the first time? Thread-safe.
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
    // Every decoded parameter of the query and the body, but no file.
    FormFields parameters;
};

struct OAuthOutcome
{
    bool accepted = false;
    // The request holds no OAuth parameter whatever.
    bool isUnsigned = false;
    // When refused: the text for the client, "oauth_problem=...".
    std::string problem;
    std::string consumerKey;
    // Empty when the request was signed by the application alone.
    std::string token;
    // When accepted: everything that was signed, decoded.
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
