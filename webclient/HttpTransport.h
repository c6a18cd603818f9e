// The only way from this module to the network, and what its implementations promise: signing,
// encoding and replies don't know which HTTP library carries them.
#pragma once

#include "webclient/SecretText.h"

#include <windows.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What is sent behind the headers, and who wants to know how far it has got.
class RequestBody
{
public:
    virtual ~RequestBody() = default;

    virtual UINT64 Length() const = 0;

    // At least one byte, at most size. A failure ends the exchange with its code.
    virtual HRESULT Read(void *buffer, ULONG size, ULONG *read) = 0;

    // How many bytes the socket has taken. Called when they became more, and several times a second
    // (at least once) while nothing moves. A failing answer ends the exchange with that code.
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
};

struct HttpReply
{
    int status = 0;
    std::string statusWords; // as the server says them; may be empty
    std::string body;
};

enum class TransportProblem
{
    NameNotFound,
    ProxyNotFound,
    CannotConnect,
    ConnectTimedOut,
    SendStalled,
    AnswerMissing,
    LostWhileSending,
    LostBeforeAnswer, // all was sent: whether the server acted on it is unknown
    CertificateExpired,
    CertificateNotYetValid,
    CertificateForOtherHost,
    CertificateUntrusted,
    TlsFailed,
    TrustFileUnreadable,
    AnswerGarbled,
    BodyUnreadable, // code: what Read answered
    EndedByCaller,  // code: what Report answered
    Other           // code: as fitting
};

// Thrown for a request without a complete reply.
struct TransportError
{
    TransportProblem problem = TransportProblem::Other;
    HRESULT code = E_FAIL;
};

struct TransportLimits
{
    std::chrono::milliseconds connect{30'000};
    std::chrono::milliseconds stall{60'000};   // without a byte moving
    std::chrono::milliseconds answer{300'000}; // from the last byte sent to the last byte of the answer
    size_t replyBytes = 4 * 1024 * 1024;
};

class HttpTransport
{
public:
    virtual ~HttpTransport() = default;

    // Sends the request once, and only once, and waits for the whole answer, whatever its status.
    // Redirections are not followed. Any thread; one thread per call.
    virtual HttpReply Exchange(const HttpRequest &request) = 0;
};

// The transport of the system that this is built for. Connections may be shared by the whole process.
std::shared_ptr<HttpTransport> CreateTransport(const TransportLimits &limits = {});
