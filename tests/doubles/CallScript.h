// The calls that a set of fakes received, in order, and which of them are to fail. One thread at a time.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

class CallScript
{
public:
    // For the fakes: notes the call, and gives S_OK or the failure that was prepared for it.
    HRESULT Enter(const std::string &operation, const std::string &details = {});

    // "Operation details" and "Operation" of everything so far.
    std::vector<std::string> Calls() const;
    std::vector<std::string> Operations() const;

    // The details of the calls of one operation.
    std::vector<std::string> DetailsOf(const std::string &operation) const;

    // The call of that number, counted from 1 over all calls, or the nth one of an operation, fails with code.
    void FailCall(size_t number, HRESULT code);
    void FailOperation(const std::string &operation, HRESULT code, size_t nth = 1);

    // Forgets calls, prepared failures and OnCall.
    void Reset();

    // Called before each call has its effect.
    std::function<void(const std::string &operation)> OnCall;

private:
    std::vector<std::pair<std::string, std::string>> m_calls;
    std::map<size_t, HRESULT> m_failingCalls;
    std::map<std::pair<std::string, size_t>, HRESULT> m_failingOperations;
};
