// The only way from this module to the network: signing, encoding and replies don't know the HTTP library.
//
// An upload creates something at the service, and a second copy is as bad as none. So a transport sends a
// request once, never twice, and its errors tell three outcomes apart:
//
//     not sent      the service can't have the whole request: nothing was created
//     answered      the service decided; its status is a reply, not an error
//     unknown       all was sent and no whole answer came: the service may or may not have acted
//
// Only a request whose bytes did not all leave may be sent again, and only by the caller, who has to sign it
// anew. That happens with connections that are kept from one request to the next: the service may close one
// just when the next request is on its way. Limits follow the same line: a transfer may take as long as bytes
// move, a service may think for minutes about a picture, and a call without a picture is over within one.
#pragma once

#include "webclient/SecretText.h"

#include <windows.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What is sent behind the headers; hears how far the transfer has got.
class RequestBody
{
public:
    virtual ~RequestBody() = default;

    virtual UINT64 Length() const = 0;

    // At least one byte, at most size. A failure ends the exchange with its code.
    virtual HRESULT Read(void *buffer, ULONG size, ULONG *read) = 0;

    // Makes the next Read start at the first byte again. Fails where that isn't possible.
    virtual HRESULT Rewind() = 0;

    // sent is the number of bytes that the socket has taken. Called when they have become more, and at least
    // once a second while nothing moves. A failing result ends the exchange with that code.
    virtual HRESULT Report(UINT64 sent) = 0;
};

struct HttpHeader
{
    std::string name;
    SecretText value;
};

struct HttpRequest
{
    std::string method;
    std::string url;
    std::string userAgent;
    std::vector<HttpHeader> headers; // not: Content-Length, which is the body's length
    RequestBody *body = nullptr;     // null for a request without one
    bool isSmall = false;            // without a picture: the limits of small calls hold
    bool needsNewConnection = false; // not one that was kept

    UINT64 BodyLength() const { return body != nullptr ? body->Length() : 0; }
    HRESULT Report(UINT64 sent) const { return body != nullptr ? body->Report(sent) : S_OK; }
};

struct HttpReply
{
    int status = 0;
    std::string statusWords; // as the server says them; may be empty
    std::string body;
    unsigned retryAfter = 0; // seconds, as the header Retry-After asks (RFC 9110, 10.2.3); 0 without one
    bool isAllSent = true;   // false for a refusal that came before the whole request was sent
};

enum class TransportProblem
{
    NameNotFound,
    ProxyNotFound,
    ProxyNeedsLogin,
    ProxyRefused, // with any other status
    CannotConnect,
    ConnectTimedOut,
    SendStalled,
    AnswerMissing,
    LostWhileSending,
    KeptConnectionLost, // as LostWhileSending, on a connection that an earlier request had used
    LostBeforeAnswer,   // all was sent: whether the server acted on it is unknown
    CertificateExpired,
    CertificateNotYetValid,
    CertificateForOtherHost,
    CertificateUntrusted,
    TlsFailed,
    TrustFileUnreadable,
    AnswerGarbled,
    AnswerTooLong,
    BodyUnreadable,    // code: what Read returned
    EndedByCaller,     // code: what Report returned
    EndedBeforeAnswer, // as EndedByCaller, after all was sent: the outcome is unknown
    Other              // code: as fitting
};

// Thrown for a request without a complete reply.
struct TransportError
{
    TransportProblem problem = TransportProblem::Other;
    HRESULT code = E_FAIL;
    std::string proxy{}; // of ProxyRefused: "host:port"
    int proxyStatus = 0; // likewise
};

// Result code and words for a request that got no answer. Each of the three outcomes has its own words: an
// unknown one says "may or may not have arrived".
struct TransportWords
{
    HRESULT code;            // always a failure
    std::string status;      // "No connection"
    std::string description; // a sentence or two, on one line
};

// what is "picture" or "request".
TransportWords WordsFor(const TransportError &error, std::string_view host, std::string_view what);

// Bytes. The service's replies have some kilobytes; XML parsers can take minutes for megabytes.
constexpr size_t LargestReply = 256 * 1024;

struct TransportLimits
{
    std::chrono::milliseconds connect{30'000};
    std::chrono::milliseconds stall{60'000};       // without a byte moving
    std::chrono::milliseconds answer{300'000};     // from the last byte sent to the last byte of the answer
    std::chrono::milliseconds smallAnswer{30'000}; // of a small call, from the last byte sent to the status
    std::chrono::milliseconds smallWhole{60'000};  // of a small call, connecting included
    size_t replyBytes = LargestReply;
};

// When an exchange began, connecting included, when a byte moved last, and when the last one was sent.
struct ExchangeTimes
{
    using Clock = std::chrono::steady_clock;

    Clock::time_point start;
    Clock::time_point lastMove;
    std::optional<Clock::time_point> allSent;
};

// What is wrong with an exchange that has passed one of the limits behind that for connecting.
std::optional<TransportProblem> PassedLimit(const ExchangeTimes &times, bool isSmall, bool isAnswering,
                                            const TransportLimits &limits);

class HttpTransport
{
public:
    virtual ~HttpTransport() = default;

    // Sends the request once, and only once, and waits for the whole answer, whatever its status from 200
    // up; interim answers (below 200) are passed over. Redirections are not followed. Throws
    // TransportError. May be called on any thread, by several at a time.
    virtual HttpReply Exchange(const HttpRequest &request) = 0;
};

// The transport of the system that this is built for. Its connections may serve the whole process.
std::shared_ptr<HttpTransport> CreateTransport(const TransportLimits &limits = {});
