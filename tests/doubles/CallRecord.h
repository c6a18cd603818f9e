// The calls that a set of fakes received, in order, and which of them are to fail. One thread at a time.
#pragma once

#include "com/WideText.h"

#include <functional>
#include <string>
#include <vector>

// UTF-8 of a text, for lines and for messages of failed tests.
std::string Narrow(WideView text);

struct Call
{
    std::string Operation;
    std::vector<std::string> Arguments;
};

class CallRecord
{
public:
    // For the fakes: notes the call, and gives S_OK or the failure that was prepared for it.
    HRESULT Enter(std::string operation, std::vector<std::string> arguments = {});
    void Add(std::string line) { Enter(std::move(line)); }

    // Each call's operation and, behind it, its arguments. An empty one leaves nothing.
    std::vector<std::string> Lines() const;

    // The lines that begin with a prefix, without it.
    std::vector<std::string> LinesOf(const std::string &prefix) const;
    std::vector<std::string> Operations() const;
    std::vector<Call> CallsOf(const std::string &operation) const;

    // Of all calls to come, or of those of one operation, the nth fails with code and has no effect.
    void FailCall(size_t nth, HRESULT code) { FailOperation("", code, nth); }
    void FailOperation(const std::string &operation, HRESULT code, size_t nth = 1);

    // Forgets calls, prepared failures and OnCall.
    void Clear() { *this = CallRecord(); }

    // Called before each call has its effect.
    std::function<void(const std::string &operation)> OnCall;

private:
    struct Failure
    {
        std::string Operation; // "": any
        size_t CallsUntil;
        HRESULT Code;
    };

    std::vector<Call> m_calls;
    std::vector<Failure> m_failures;
};
