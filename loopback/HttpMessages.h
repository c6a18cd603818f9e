// HTTP as the service's endpoints see it, independent of the library that implements the protocol.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace loopback
{

struct HttpRequest
{
    std::string method;
    // From the request line, still percent-encoded, with the query. If that held a whole address: its part
    // after the host.
    std::string target;
    // Lower case, with the port unless it is the scheme's default.
    std::string host;
    // Names in lower case.
    std::map<std::string, std::string> headers;
    bool secure = false;

    // The header's value, or an empty text.
    std::string Header(const std::string &lowerCaseName) const
    {
        const auto found = headers.find(lowerCaseName);
        return found == headers.end() ? std::string() : found->second;
    }

    // The target without its query, still percent-encoded.
    std::string Path() const { return target.substr(0, target.find('?')); }

    std::string Query() const
    {
        const auto mark = target.find('?');
        return mark == std::string::npos ? std::string() : target.substr(mark + 1);
    }

    // The host without its port.
    std::string HostName() const { return host.substr(0, host.find(':')); }

    // Whether a page of another site made the browser send this: the browser names that site in the Origin header.
    bool IsFromForeignPage() const
    {
        const std::string origin = Header("origin");
        return !origin.empty() && origin != (secure ? "https://" : "http://") + host;
    }
};

enum class Delivery
{
    Whole,
    // The whole length is announced; the connection ends after half of the body.
    Half,
    // Nothing is sent; the connection is closed in order (FIN) ...
    Closed,
    // ... or reset (RST).
    Reset
};

struct HttpReply
{
    int status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    // If set, the reply's body is this file's content, and `body` is ignored.
    std::filesystem::path file;
    Delivery delivery = Delivery::Whole;
};

// One request from its header to its answer, on a thread of its connection.
class HttpTransaction
{
public:
    virtual ~HttpTransaction() = default;

    // Takes the next piece of the body. False resets the connection; there is no answer then.
    virtual bool TakeBody(std::string_view bytes) = 0;

    // Called once the whole body has arrived.
    virtual HttpReply Answer() = 0;
};

using BeginTransaction = std::function<std::unique_ptr<HttpTransaction>(const HttpRequest &)>;

// The usual words for an HTTP status, such as "Bad Gateway".
std::string StatusWords(int status);

} // namespace loopback
