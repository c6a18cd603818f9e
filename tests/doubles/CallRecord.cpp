#include "tests/doubles/CallRecord.h"

#include <algorithm>
#include <filesystem>

std::string Narrow(WideView text)
{
    const std::u8string bytes = std::filesystem::path(text).u8string();
    return std::string(bytes.begin(), bytes.end());
}

HRESULT CallRecord::Enter(std::string operation, std::vector<std::string> arguments)
{
    HRESULT result = S_OK;
    for (Failure &failure : m_failures)
    {
        const bool isMeant = failure.Operation.empty() || failure.Operation == operation;
        if (isMeant && failure.CallsUntil-- == 1)
        {
            result = failure.Code;
        }
    }
    m_calls.push_back({operation, std::move(arguments)});
    if (OnCall)
    {
        OnCall(operation);
    }
    return result;
}

std::vector<std::string> CallRecord::Lines() const
{
    std::vector<std::string> lines;
    for (const Call &call : m_calls)
    {
        std::string line = call.Operation;
        for (const std::string &argument : call.Arguments)
        {
            line += (argument.empty() ? "" : " ") + argument;
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> CallRecord::LinesOf(const std::string &prefix) const
{
    std::vector<std::string> found;
    for (const std::string &line : Lines())
    {
        if (line.starts_with(prefix))
        {
            found.push_back(line.substr(prefix.size()));
        }
    }
    return found;
}

std::vector<std::string> CallRecord::Operations() const
{
    std::vector<std::string> operations;
    for (const Call &call : m_calls)
    {
        operations.push_back(call.Operation);
    }
    return operations;
}

std::vector<Call> CallRecord::CallsOf(const std::string &operation) const
{
    std::vector<Call> calls = m_calls;
    std::erase_if(calls, [&](const Call &call) { return call.Operation != operation; });
    return calls;
}

void CallRecord::FailOperation(const std::string &operation, HRESULT code, size_t nth)
{
    m_failures.push_back({operation, nth, code});
}
