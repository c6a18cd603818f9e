// Misbehaviour on demand: an ordered list of faults, each for the next so many requests of a kind.
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
    // Reset the connection when so many bytes of the body were read: after=1000
    Cut,
    // Read and keep the request, then close without an answer.
    NoAnswer,
    // Answer only after a time: ms=2000
    Delay,
    // Stop reading for a time when so many bytes of the body were read: ms=2000, after=1000
    Stall,
    // Read the body no faster than so many bytes a second: rate=100000
    Slow,
    // Answer 200 with something that is no XML.
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
    // So many requests of the target pass first.
    int skip = 0;
    // The request is carried out although its answer is a failure: store=1. Only for status and
    // error; every other fault with an answer carries the request out.
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

// From form fields such as kind=status&status=504&count=2&target=upload. The reason in words when
// they say something else; nothing is guessed.
std::optional<std::string> ReadFault(const FormFields &fields, Fault &fault);

class FaultQueue
{
public:
    void Add(const Fault &fault);
    void Clear();
    std::vector<Fault> Pending() const;

    // The fault for this request, used up by one.
    std::optional<Fault> Take(const std::string &target);

private:
    mutable std::mutex m_mutex;
    std::deque<Fault> m_faults;
};

// The answer that the fault gives in place of the service's own, if it is one that answers.
std::optional<HttpReply> FaultAnswer(const Fault &fault);

} // namespace loopback
