#include "host/RunRecord.h"

#include "host/FileNames.h"
#include "com/AsciiText.h"
#include "com/SafeText.h"

#include <windows.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace
{
const std::string CodeMark = "0x";
constexpr size_t CodeDigits = 8;

// The web client says this of every upload that was sent whole and not answered, and of no other.
constexpr std::string_view OutcomeUnknown = "may or may not have arrived";
constexpr std::string_view HexDigits = "0123456789abcdefABCDEF";

bool SaysNothing(const std::string &text)
{
    return text.empty() || text.starts_with("(internal");
}

// What a user can do about it; most codes' words say that themselves.
const char *AdviceFor(HRESULT code)
{
    switch (code)
    {
    case WINCODEC_ERR_BADIMAGE:
    case WINCODEC_ERR_STREAMREAD:
        return "; copy the file again from its source";
    case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
        return "; save it again with 8 bits for each colour";
    case WINCODEC_ERR_IMAGESIZEOUTOFRANGE:
        return "; save a smaller one";
    default:
        return "";
    }
}

// The eight digits of the code in an error entry of the plug-in, empty if it has none. The last "(0x...)": the path
// before it may contain one too.
std::string CodeOfEntry(const std::string &entry)
{
    for (size_t at = entry.rfind(CodeMark); at != entry.npos;
         at = at == 0 ? entry.npos : entry.rfind(CodeMark, at - 1))
    {
        const std::string digits = entry.substr(at + CodeMark.size(), CodeDigits);
        const size_t end = at + CodeMark.size() + CodeDigits;
        if (end < entry.size() && entry[end] == ')' && digits.find_first_not_of(HexDigits) == digits.npos)
        {
            return digits;
        }
    }
    return std::string();
}

std::string HexCode(HRESULT code)
{
    char digits[CodeDigits + 1];
    std::snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(code));
    return digits;
}

std::string Count(size_t number, const char *one, const char *several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

constexpr size_t MostNamedOfNotTried = 10;

// Files that ended alike, a line each with the reason.
class FileList
{
public:
    void Add(const std::string &name, const std::string &reason)
    {
        m_lines += "  " + name + ": " + OneSafeLine(reason) + "\n";
        ++m_count;
    }

    // Adds their count, the words for one or several and the lines, if there are any.
    // Only so many are named; of more the count alone is told.
    void AppendTo(std::string &text, const char *one, const char *several,
                  size_t mostNamed = std::numeric_limits<size_t>::max()) const
    {
        if (m_count != 0)
        {
            std::string words = m_count == 1 ? one : several;
            words.back() = m_count > mostNamed ? '.' : ':';
            text += (text.ends_with('\n') ? "" : " ") + Count(m_count, "file", "files") + words + "\n" +
                    (m_count > mostNamed ? "" : m_lines);
        }
    }

private:
    std::string m_lines;
    size_t m_count = 0;
};
} // namespace

std::string ReasonOfEntry(const std::string &entry, const ErrorWords &words)
{
    const std::string digits = CodeOfEntry(entry);
    if (digits.empty())
    {
        return entry;
    }
    const size_t end = entry.rfind(CodeMark + digits + ")") + CodeMark.size() + CodeDigits + 1;
    const std::string rest(Trimmed(std::string_view(entry).substr(end)));
    if (!SaysNothing(rest))
    {
        return rest;
    }
    const auto code = static_cast<HRESULT>(std::strtoul(digits.c_str(), nullptr, 16));
    const std::string said = words(code);
    const std::string meaning(Trimmed(said));
    return (meaning.empty() ? "error" : meaning) + " (" + CodeMark + digits + ")" + AdviceFor(code);
}

RunRecord::RunRecord(ItemCollection collection)
    : m_collection(std::move(collection)), m_states(m_collection.items.size())
{
}

// Without the lock, since the watcher asks for more.
void RunRecord::Tell(std::optional<size_t> index, bool isOver) const
{
    if (index && m_watch)
    {
        m_watch(*index, isOver);
    }
}

std::vector<size_t> RunRecord::NotTried() const
{
    const std::lock_guard guard(m_lock);
    std::vector<size_t> indexes;
    for (size_t i = 0; i < m_states.size(); ++i)
    {
        if (!m_states[i].begun)
        {
            indexes.push_back(i);
        }
    }
    return indexes;
}

void RunRecord::ItemBegins(size_t index)
{
    RunEnds();
    const std::lock_guard guard(m_lock);
    if (index < m_states.size())
    {
        m_states[index].begun = true;
        m_current = m_lastTried = index;
    }
}

void RunRecord::NoteEntry(int level, const std::string &text)
{
    if (level < 3)
    {
        return;
    }
    std::unique_lock lock(m_lock);
    (m_current ? m_states[*m_current].errors : m_runErrors).push_back(text);
    const auto current = m_current;
    lock.unlock();
    Tell(current, false);
}

void RunRecord::NoteFault(HRESULT code, const std::string &words)
{
    const std::lock_guard guard(m_lock);
    if (m_current)
    {
        m_states[*m_current].faultCode = code;
        m_states[*m_current].faultWords = words;
    }
}

void RunRecord::NoteIds(const ServiceIds &ids)
{
    std::unique_lock lock(m_lock);
    const auto current = m_current;
    if (current)
    {
        m_states[*current].ids = ids;
    }
    lock.unlock();
    Tell(current, false);
}

ServiceIds RunRecord::IdsOf(size_t index) const
{
    const std::lock_guard guard(m_lock);
    return m_states.at(index).ids;
}

std::string RunRecord::AsTyped(const std::string &text) const
{
    const std::lock_guard guard(m_lock);
    return m_current ? m_collection.items[*m_current].AsTyped(text) : text;
}

std::optional<size_t> RunRecord::Current() const
{
    const std::lock_guard guard(m_lock);
    return m_current;
}

void RunRecord::RunEnds()
{
    std::unique_lock lock(m_lock);
    const auto last = std::exchange(m_current, std::nullopt);
    lock.unlock();
    Tell(last, true);
}

void RunRecord::TryAgain(size_t index)
{
    const std::lock_guard guard(m_lock);
    m_states.at(index) = ItemState();
}

ItemEnd RunRecord::EndOf(size_t index) const
{
    const std::lock_guard guard(m_lock);
    const ItemState &state = m_states.at(index);
    if (!state.ids.photo.empty() || !state.ids.ticket.empty())
    {
        return state.ids.photo.empty() ? ItemEnd::HandedIn : ItemEnd::Published;
    }
    const bool isUnknown = std::ranges::any_of(
        state.errors, [](const std::string &error) { return error.find(OutcomeUnknown) != error.npos; });
    // Entries ahead of the one with the code may be followed by a success.
    if (m_current == index && (state.errors.empty() || CodeOfEntry(state.errors.back()).empty()))
    {
        return ItemEnd::NotTried;
    }
    return !state.begun           ? ItemEnd::NotTried
           : isUnknown            ? ItemEnd::Unknown
           : state.errors.empty() ? ItemEnd::Published
                                  : ItemEnd::Failed;
}

std::optional<size_t> RunRecord::LastTried() const
{
    const std::lock_guard guard(m_lock);
    return m_lastTried;
}

std::string RunRecord::LastErrorOf(size_t index) const
{
    const std::lock_guard guard(m_lock);
    const auto &errors = m_states.at(index).errors;
    return errors.empty() ? std::string() : errors.back();
}

size_t RunRecord::FailuresToConnect() const
{
    const std::lock_guard guard(m_lock);
    size_t failures = 0;
    for (size_t end = m_lastTried ? *m_lastTried + 1 : 0; end > 0; --end, ++failures)
    {
        const auto &errors = m_states[end - 1].errors;
        if (errors.empty() || !SaysNoConnection(errors.back()))
        {
            break;
        }
    }
    return failures;
}

std::string RunRecord::ItemState::Reason(const ErrorWords &words) const
{
    if (errors.empty())
    {
        return std::string();
    }
    if (!faultWords.empty() && CodeOfEntry(errors.back()) == HexCode(faultCode))
    {
        return faultWords + AdviceFor(faultCode);
    }
    return errors.size() > 1 ? errors.front() : ReasonOfEntry(errors.back(), words);
}

std::string RunRecord::ReasonOf(size_t index, const ErrorWords &words) const
{
    const ItemEnd end = EndOf(index);
    const std::lock_guard guard(m_lock);
    return end == ItemEnd::Unknown || end == ItemEnd::Failed ? m_states.at(index).Reason(words) : std::string();
}

std::vector<std::string> RunRecord::Errors() const
{
    std::vector<std::string> all = m_runErrors;
    for (const ItemState &state : m_states)
    {
        all.insert(all.end(), state.errors.begin(), state.errors.end());
    }
    return all;
}

RunSummary RunRecord::Summarize(bool cancelled, const ErrorWords &words, const ConnectionSettings &settings) const
{
    size_t published = 0;
    size_t handedIn = 0;
    FileList failed;
    FileList unknown;
    FileList notTried;
    for (const RefusedFile &refused : m_collection.refused)
    {
        failed.Add(ShownPath(refused.path), refused.reason);
    }
    for (const RefusedFile &undecided : m_collection.undecided)
    {
        unknown.Add(ShownPath(undecided.path), undecided.reason);
    }
    for (size_t i = 0; i < m_states.size(); ++i)
    {
        const std::string name = ShownPath(m_collection.items[i].TypedFile());
        switch (EndOf(i))
        {
        case ItemEnd::Published:
            ++published;
            break;
        case ItemEnd::HandedIn:
            ++handedIn;
            break;
        case ItemEnd::NotTried:
            notTried.Add(name, cancelled ? "not tried, the run was cancelled" : "not tried");
            break;
        case ItemEnd::Unknown:
            unknown.Add(name, m_states[i].Reason(words));
            break;
        case ItemEnd::Failed:
            failed.Add(name, m_states[i].Reason(words));
            break;
        }
    }
    const size_t total = m_states.size() + m_collection.refused.size() + m_collection.undecided.size();
    const size_t left = m_collection.leftOut.size();
    const std::string leftOut = left == 0
                                    ? ""
                                    : Count(left, "picture is", "pictures are") + " on the account already and " +
                                          (left == 1 ? "was" : "were") + " left out.\n";
    if (total == 0 && m_runErrors.empty())
    {
        return {left == 0 ? ExitCode::SomeFailed : ExitCode::Success, "Nothing to publish.\n" + leftOut};
    }

    RunSummary summary;
    for (const std::string &error : m_runErrors)
    {
        summary.text += OneSafeLine(ReasonOfEntry(error, words)) + "\n";
    }
    const bool isWhole = published + handedIn == total && m_runErrors.empty();
    if (published != 0 || handedIn == 0)
    {
        summary.text += "Published " + (isWhole && handedIn == 0 ? "" : std::to_string(published) + " of ") +
                        Count(total, "picture", "pictures") + ".";
    }
    if (handedIn != 0)
    {
        summary.text += (summary.text.ends_with('.') ? " " : "") + std::string("Handed in ") +
                        Count(handedIn, "picture", "pictures") +
                        ", which Flickr publishes in its own time, or refuses.";
    }
    if (isWhole)
    {
        summary.text += "\n" + leftOut;
        return summary;
    }
    summary.exitCode = cancelled ? ExitCode::Cancelled : ExitCode::SomeFailed;
    failed.AppendTo(summary.text, " was not uploaded:", " were not uploaded:");
    notTried.AppendTo(summary.text, " was not tried:", " were not tried:", MostNamedOfNotTried);
    unknown.AppendTo(summary.text, " may be published or not; look at Flickr before you publish it again:",
                     " may be published or not; look at Flickr before you publish them again:");
    summary.text += (summary.text.ends_with('\n') ? "" : "\n") + leftOut;
    if (FailuresToConnect() >= MostFailuresToConnect)
    {
        summary.text += "Flickr could not be reached " + std::to_string(MostFailuresToConnect) +
                        " times in a row, so the run was stopped. Publish the rest when there is a connection.\n";
    }
    for (const std::string &advice : AdviceFor(Errors(), settings))
    {
        summary.text += OneSafeLine(advice) + "\n";
    }
    return summary;
}
