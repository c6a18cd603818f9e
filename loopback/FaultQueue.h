// The faults that tests and experiments ask for: an ordered list, each for a number of requests of a kind.
// Thread-safe.
#pragma once

#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace loopback
{

// By kind:
//   status      answer with an HTTP status and a body: status=503, body=TEXT; without it, a page of HTML
//   error       answer with a service error: code=105, message=...
//   cut         reset the connection when this many bytes of the body were read: after=1000
//   no-answer   read and keep the request, then close without an answer
//   delay       answer only after a time: ms=2000
//   stall       stop reading for a time when this many bytes of the body were read: ms=2000, after=1000
//   slow        read at most this many bytes of the body per second: rate=100000
//   garbage     answer 200 with a body that isn't XML
//   truncated   announce the whole answer, send half of it and end the connection
struct Fault
{
    std::string kind;
    // "upload", "rest", "oauth" (the steps and the page of an authorization), "maker" (the maker's
    // endpoint) or "any"
    std::string target = "any";
    int count = 1;
    // The number of requests of the target that pass before the fault applies.
    int skip = 0;
    // The service carries the request out although it answers with a failure: store=1. Only for status and
    // error; with every other fault that answers, it carries the request out.
    bool isCarriedOut = false;
    int status = 503;
    std::optional<std::string> body;
    int code = 105;
    std::string message = "Service currently unavailable";
    std::int64_t after = 0;
    std::int64_t milliseconds = 1000;
    std::int64_t bytesPerSecond = 100'000;
};

class FaultQueue
{
public:
    // Adds the fault of form fields such as kind=status&status=504&count=2&target=upload. Returns an error message if
    // a field is unknown or its value is bad.
    std::optional<std::string> Add(const FormFields &fields);
    // Returns the fault for this request and lowers its count by one.
    std::optional<Fault> Take(const std::string &target);

private:
    std::mutex m_mutex;
    std::deque<Fault> m_faults;
};

// The answer with which the fault replaces the service's own; nullopt if this kind of fault doesn't.
std::optional<HttpReply> FaultAnswer(const Fault &fault);

} // namespace loopback
