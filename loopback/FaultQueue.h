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
#include <vector>

namespace loopback
{

enum class FaultKind
{
    // Answer with an HTTP status and a body: status=503, body=html|text|empty|any text, type=...
    Status,
    // Answer with a service error: code=105, message=...
    Error,
    // Reset the connection when this many bytes of the body were read: after=1000
    Cut,
    // Read and keep the request, then close without an answer.
    NoAnswer,
    // Answer only after a time: ms=2000
    Delay,
    // Stop reading for a time when this many bytes of the body were read: ms=2000, after=1000
    Stall,
    // Read at most this many bytes of the body per second: rate=100000
    Slow,
    // Answer 200 with a body that isn't XML.
    Garbage,
    // Announce the whole answer, send half of it and reset the connection.
    Truncated
};

struct Fault
{
    FaultKind kind = FaultKind::Status;
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
    std::string body = "html";
    std::string contentType;
    int code = 105;
    std::string message = "Service currently unavailable";
    std::int64_t after = 0;
    std::int64_t milliseconds = 1000;
    std::int64_t bytesPerSecond = 100'000;
};

const char *FaultName(FaultKind kind);

// Reads form fields such as kind=status&status=504&count=2&target=upload. Returns an error message if a
// field is unknown or its value is bad.
std::optional<std::string> ReadFault(const FormFields &fields, Fault &fault);

class FaultQueue
{
public:
    void Add(const Fault &fault);
    void Clear();
    std::vector<Fault> Pending() const;

    // Returns the fault for this request and lowers its count by one.
    std::optional<Fault> Take(const std::string &target);

private:
    mutable std::mutex m_mutex;
    std::deque<Fault> m_faults;
};

// The answer with which the fault replaces the service's own; nullopt if this kind of fault doesn't.
std::optional<HttpReply> FaultAnswer(const Fault &fault);

} // namespace loopback
