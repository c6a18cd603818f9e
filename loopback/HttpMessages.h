// What the endpoints of the service see of HTTP: a request whose body is read piece by piece, and a
// reply. Nothing here knows the library that speaks the protocol.
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
    // As it stood in the request line, still percent-encoded, query included; of a whole address what follows
    // the host.
    std::string target;
    // Lower case, with the port when it isn't the scheme's own.
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
    // When set, the reply is this file and `body` is not looked at.
    std::filesystem::path file;
    // The reply announces its whole length, sends half of it and drops the connection.
    bool cutInBody = false;
};

enum class ConnectionEnd
{
    // As a program ends that is done with the connection.
    Closed,
    // As the network ends one that broke.
    Reset
};

// One request on its connection, for the thread that handles it.
class HttpExchange
{
public:
    using BodySink = std::function<bool(std::string_view)>;

    virtual ~HttpExchange() = default;
    virtual const HttpRequest &Request() const = 0;

    // Hands the body to the sink in pieces, to its end. False when the sink stopped it, the client
    // went away or the server is stopping; what is left is then dropped with the connection.
    virtual bool ReadBody(const BodySink &sink) = 0;

    // False as soon as the server is stopping.
    virtual bool Pause(std::chrono::milliseconds duration) = 0;

    // Not a byte more: the connection ends when the handler returns, whatever it returns.
    virtual void Drop(ConnectionEnd end) = 0;
};

using HttpHandler = std::function<HttpReply(HttpExchange &)>;

} // namespace loopback
