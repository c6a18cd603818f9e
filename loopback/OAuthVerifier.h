// The service's side of OAuth 1.0a (RFC 5849). Application and service share two secrets, that of the
// application and that of the token. The application signs method, URL and all parameters with an HMAC
// whose key is made of both; the service computes the same code and compares. A timestamp and a nonce are
// among the signed parameters: a request is accepted only within a window around its timestamp, and only
// once in that window, so nobody can send a recorded request again. Thread-safe.
#pragma once

#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace loopback
{

struct OAuthOutcome
{
    bool accepted = false;
    // The request has no OAuth parameter at all.
    bool isUnsigned = false;
    // If refused: the text for the client, "oauth_problem=...".
    std::string problem;
    // Empty if the application signed the request without a token.
    std::string token;
    // If accepted: all signed parameters, decoded.
    FormFields parameters;
};

// The text whose HMAC is the signature: method, URL and sorted parameters (RFC 5849, 3.4.1).
std::string SignatureBase(const std::string &method, const std::string &url, const FormFields &parameters);

// The application that may send requests.
struct Consumer
{
    std::string key;
    std::string secret;
};

// The application that holds the demonstration key.
inline const Consumer Demonstration{"68616c766f72612d64656d6f2d6b6579", "64656d6f2d736563"};

class OAuthVerifier
{
public:
    using SecretLookup = std::function<std::optional<std::string>(const std::string &)>;
    using Clock = std::function<std::int64_t()>;

    // `tokenSecret` gives the secret of a token; the clock counts Unix seconds.
    OAuthVerifier(Consumer consumer, SecretLookup tokenSecret, Clock clock);

    // `fields` are the decoded fields of the body, without files. Those of the query are read here.
    OAuthOutcome Check(const HttpRequest &request, const FormFields &fields);

private:
    bool UseNonce(const std::string &nonce, std::int64_t now);

    Consumer m_consumer;
    SecretLookup m_tokenSecret;
    Clock m_clock;
    std::mutex m_mutex;
    // Each with the time at which it was used.
    std::map<std::string, std::int64_t> m_nonces;
};

} // namespace loopback
