// HTTP as the service's endpoints see it: a request whose body is read piece by piece, and a reply.
// Independent of the library that implements the protocol.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
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
    // Counted from 1 over the life of the server.
    std::uint64_t connection = 0;

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
};

struct HttpReply
{
    int status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    // If set, the reply's body is this file's content, and `body` is ignored.
    std::filesystem::path file;
    // Announce the whole length, send half of it and drop the connection.
    bool cutInBody = false;
};

enum class ConnectionEnd
{
    // Orderly close (FIN).
    Closed,
    // Reset (RST).
    Reset
};

// One request on its connection, for the thread that handles it.
class HttpExchange
{
public:
    using BodySink = std::function<bool(std::string_view)>;

    virtual ~HttpExchange() = default;
    virtual const HttpRequest &Request() const = 0;

    // Passes the whole body to the sink in pieces. Returns false if the sink stopped it, the client
    // disconnected or the server is stopping; the rest of the body is then lost with the connection.
    virtual bool ReadBody(const BodySink &sink) = 0;

    // Returns false as soon as the server is stopping.
    virtual bool Pause(std::chrono::milliseconds duration) = 0;

    // Sends and reads nothing more: the connection ends when the handler returns, and its reply is discarded.
    virtual void Drop(ConnectionEnd end) = 0;
};

using HttpHandler = std::function<HttpReply(HttpExchange &)>;

} // namespace loopback
