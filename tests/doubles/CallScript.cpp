#include "tests/doubles/CallScript.h"

#include <algorithm>

HRESULT CallScript::Enter(const std::string &operation, const std::string &details)
{
    m_calls.emplace_back(operation, details);
    if (OnCall)
    {
        OnCall(operation);
    }
    if (const auto failure = m_failingCalls.find(m_calls.size()); failure != m_failingCalls.end())
    {
        return failure->second;
    }
    const auto nth = static_cast<size_t>(
        std::count_if(m_calls.begin(), m_calls.end(), [&](const auto &call) { return call.first == operation; }));
    const auto failure = m_failingOperations.find({operation, nth});
    return failure == m_failingOperations.end() ? S_OK : failure->second;
}

std::vector<std::string> CallScript::Calls() const
{
    std::vector<std::string> lines;
    for (const auto &[operation, details] : m_calls)
    {
        lines.push_back(details.empty() ? operation : operation + " " + details);
    }
    return lines;
}

std::vector<std::string> CallScript::Operations() const
{
    std::vector<std::string> operations;
    for (const auto &call : m_calls)
    {
        operations.push_back(call.first);
    }
    return operations;
}

std::vector<std::string> CallScript::DetailsOf(const std::string &operation) const
{
    std::vector<std::string> details;
    for (const auto &call : m_calls)
    {
        if (call.first == operation)
        {
            details.push_back(call.second);
        }
    }
    return details;
}

void CallScript::FailCall(size_t number, HRESULT code)
{
    m_failingCalls[number] = code;
}

void CallScript::FailOperation(const std::string &operation, HRESULT code, size_t nth)
{
    m_failingOperations[{operation, nth}] = code;
}

void CallScript::Reset()
{
    *this = CallScript();
}
