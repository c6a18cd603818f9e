#include "loopback/FaultQueue.h"

#include "loopback/XmlReply.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace loopback
{

namespace
{

// If the field is present, reads it into `value`; it must be a whole number and at least `lowest`.
template <typename Number>
bool ReadNumber(const FormFields &fields, const char *name, long long lowest, Number &value)
{
    const auto text = FindField(fields, name);
    if (!text)
    {
        return true;
    }
    const auto number = ParseWholeNumber(*text);
    if (!number || *number < lowest || *number > 1'000'000'000'000)
    {
        return false;
    }
    value = static_cast<Number>(*number);
    return true;
}

bool IsOneOf(std::initializer_list<std::string_view> words, const std::string &word)
{
    return std::ranges::count(words, word) > 0;
}

} // namespace

std::optional<std::string> FaultQueue::Add(const FormFields &fields)
{
    Fault fault;
    for (const auto &[name, value] : fields)
    {
        if (!IsOneOf({"kind", "target", "count", "skip", "store", "status", "body", "code", "message", "after",
                      "ms", "rate"},
                     name))
        {
            return "a fault has no \"" + name + "\"";
        }
    }
    fault.kind = FindField(fields, "kind").value_or("");
    if (!IsOneOf({"status", "error", "cut", "no-answer", "delay", "stall", "slow", "garbage", "truncated"},
                 fault.kind))
    {
        return "there is no fault of kind \"" + fault.kind + "\"";
    }
    fault.target = FindField(fields, "target").value_or(fault.target);
    if (!IsOneOf({"upload", "rest", "oauth", "maker", "any"}, fault.target))
    {
        return "the target is upload, rest, oauth, maker or any";
    }
    fault.body = FindField(fields, "body");
    fault.message = FindField(fields, "message").value_or(fault.message);
    int store = 0;
    if (!ReadNumber(fields, "count", 1, fault.count) || !ReadNumber(fields, "skip", 0, fault.skip) ||
        !ReadNumber(fields, "store", 0, store) || !ReadNumber(fields, "status", 200, fault.status) ||
        !ReadNumber(fields, "code", 0, fault.code) || !ReadNumber(fields, "after", 0, fault.after) ||
        !ReadNumber(fields, "ms", 0, fault.milliseconds) || !ReadNumber(fields, "rate", 1, fault.bytesPerSecond) ||
        fault.status > 599)
    {
        return "a number of the fault is out of range";
    }
    fault.isCarriedOut = store != 0;
    const std::lock_guard lock(m_mutex);
    m_faults.push_back(fault);
    return std::nullopt;
}

std::optional<Fault> FaultQueue::Take(const std::string &target)
{
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_faults.begin(), m_faults.end(), [&](const Fault &fault) {
        return fault.target == "any" || fault.target == target;
    });
    if (found == m_faults.end())
    {
        return std::nullopt;
    }
    if (found->skip > 0)
    {
        --found->skip;
        return std::nullopt;
    }
    const Fault taken = *found;
    if (--found->count == 0)
    {
        m_faults.erase(found);
    }
    return taken;
}

std::optional<HttpReply> FaultAnswer(const Fault &fault)
{
    if (fault.kind == "status" && fault.body)
    {
        return HttpReply{fault.status, "text/plain; charset=utf-8", *fault.body};
    }
    if (fault.kind == "status")
    {
        return HttpReply{fault.status, "text/html",
                         fmt::format("<html>\r\n<head><title>{0} {1}</title></head>\r\n<body>\r\n"
                                     "<center><h1>{0} {1}</h1></center>\r\n</body>\r\n</html>\r\n",
                                     fault.status, StatusWords(fault.status))};
    }
    if (fault.kind == "error")
    {
        return FailReply(fault.code, fault.message);
    }
    if (fault.kind == "garbage")
    {
        return HttpReply{200, "text/xml; charset=utf-8",
                         "<!doctype html><p>Welcome to the hotel's wireless network & enjoy your stay"};
    }
    return std::nullopt;
}

} // namespace loopback
