#include "loopback/FaultQueue.h"

#include "loopback/XmlReply.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace loopback
{

namespace
{

struct KindName
{
    FaultKind kind;
    const char *name;
};

constexpr std::array KindNames = {
    KindName{FaultKind::Status, "status"},
    KindName{FaultKind::Error, "error"},
    KindName{FaultKind::Cut, "cut"},
    KindName{FaultKind::NoAnswer, "no-answer"},
    KindName{FaultKind::Delay, "delay"},
    KindName{FaultKind::Stall, "stall"},
    KindName{FaultKind::Slow, "slow"},
    KindName{FaultKind::Garbage, "garbage"},
    KindName{FaultKind::Truncated, "truncated"},
};

struct StatusWords
{
    int status;
    const char *words;
};

constexpr std::array Words = {
    StatusWords{400, "Bad Request"},
    StatusWords{401, "Unauthorized"},
    StatusWords{403, "Forbidden"},
    StatusWords{404, "Not Found"},
    StatusWords{413, "Payload Too Large"},
    StatusWords{429, "Too Many Requests"},
    StatusWords{500, "Internal Server Error"},
    StatusWords{502, "Bad Gateway"},
    StatusWords{503, "Service Unavailable"},
    StatusWords{504, "Gateway Time-out"},
};

std::string WordsFor(int status)
{
    const auto found =
        std::find_if(Words.begin(), Words.end(), [&](const StatusWords &entry) { return entry.status == status; });
    return found == Words.end() ? "Error" : found->words;
}

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

std::optional<std::string> UnknownField(const FormFields &fields)
{
    constexpr std::array known = {"kind", "target", "count",   "skip",  "store", "status", "body",
                                  "type", "code",   "message", "after", "ms",    "rate"};
    for (const auto &[name, value] : fields)
    {
        if (std::find(known.begin(), known.end(), name) == known.end())
        {
            return name;
        }
    }
    return std::nullopt;
}

} // namespace

const char *FaultName(FaultKind kind)
{
    return std::find_if(KindNames.begin(), KindNames.end(),
                        [&](const KindName &entry) { return entry.kind == kind; })
        ->name;
}

std::optional<std::string> ReadFault(const FormFields &fields, Fault &fault)
{
    if (const auto unknown = UnknownField(fields))
    {
        return "a fault has no \"" + *unknown + "\"";
    }
    const std::string kind = FindField(fields, "kind").value_or("");
    const auto found = std::find_if(KindNames.begin(), KindNames.end(),
                                    [&](const KindName &entry) { return entry.name == kind; });
    if (found == KindNames.end())
    {
        return "there is no fault of kind \"" + kind + "\"";
    }
    fault.kind = found->kind;
    fault.target = FindField(fields, "target").value_or(fault.target);
    constexpr std::array targets = {"upload", "rest", "oauth", "maker", "any"};
    if (std::find(targets.begin(), targets.end(), fault.target) == targets.end())
    {
        return "the target is upload, rest, oauth, maker or any";
    }
    fault.body = FindField(fields, "body").value_or(fault.body);
    fault.contentType = FindField(fields, "type").value_or("");
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
    return std::nullopt;
}

void FaultQueue::Add(const Fault &fault)
{
    std::lock_guard lock(m_mutex);
    m_faults.push_back(fault);
}

void FaultQueue::Clear()
{
    std::lock_guard lock(m_mutex);
    m_faults.clear();
}

std::vector<Fault> FaultQueue::Pending() const
{
    std::lock_guard lock(m_mutex);
    return {m_faults.begin(), m_faults.end()};
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
    switch (fault.kind)
    {
    case FaultKind::Status:
    {
        const std::string words = WordsFor(fault.status);
        HttpReply reply{fault.status, "text/plain; charset=utf-8", fault.body};
        if (fault.body == "html")
        {
            reply.contentType = "text/html";
            reply.body = fmt::format("<html>\r\n<head><title>{0} {1}</title></head>\r\n<body>\r\n"
                                     "<center><h1>{0} {1}</h1></center>\r\n</body>\r\n</html>\r\n",
                                     fault.status, words);
        }
        else if (fault.body == "text")
        {
            reply.body = words + "\n";
        }
        else if (fault.body == "empty")
        {
            reply.body.clear();
        }
        if (!fault.contentType.empty())
        {
            reply.contentType = fault.contentType;
        }
        return reply;
    }
    case FaultKind::Error:
        return FailReply(fault.code, fault.message);
    case FaultKind::Garbage:
        return HttpReply{200, "text/xml; charset=utf-8",
                         "<!doctype html><p>Welcome to the hotel's wireless network & enjoy your stay"};
    default:
        return std::nullopt;
    }
}

} // namespace loopback
