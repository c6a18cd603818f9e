#include "host/RunRecord.h"

#include "host/FileNames.h"
#include "com/AsciiText.h"
#include "com/SafeText.h"

#include <windows.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr std::string_view CodeMark = "0x";
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

std::string Count(size_t number, const char *one, const char *several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

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
    void AppendTo(std::string &text, const char *one, const char *several) const
    {
        if (m_count != 0)
        {
            text += (text.ends_with('\n') ? "" : " ") + Count(m_count, "file", "files");
            text += std::string(m_count == 1 ? one : several) + "\n" + m_lines;
        }
    }

private:
    std::string m_lines;
    size_t m_count = 0;
};
} // namespace

std::string ReasonOfEntry(const std::string &entry, const ErrorWords &words)
{
    // Take the last "(0x...)": the path before it may contain one too.
    for (size_t at = entry.rfind(CodeMark); at != entry.npos;
         at = at == 0 ? entry.npos : entry.rfind(CodeMark, at - 1))
    {
        const std::string digits = entry.substr(at + CodeMark.size(), CodeDigits);
        const size_t end = at + CodeMark.size() + CodeDigits;
        if (end >= entry.size() || entry[end] != ')' || digits.find_first_not_of(HexDigits) != digits.npos)
        {
            continue;
        }
        const std::string rest(Trimmed(std::string_view(entry).substr(end + 1)));
        if (!SaysNothing(rest))
        {
            return rest;
        }
        const auto code = static_cast<HRESULT>(std::strtoul(digits.c_str(), nullptr, 16));
        const std::string said = words(code);
        const std::string meaning(Trimmed(said));
        return (meaning.empty() ? "error" : meaning) + " (0x" + digits + ")" + AdviceFor(code);
    }
    return entry;
}

RunRecord::RunRecord(ItemCollection collection)
    : m_collection(std::move(collection)), m_states(m_collection.items.size())
{
}

void RunRecord::ItemBegins(size_t index)
{
    const std::lock_guard guard(m_lock);
    if (index < m_states.size())
    {
        m_states[index].begun = true;
        m_current = index;
    }
}

void RunRecord::NoteEntry(int level, const std::string &text)
{
    if (level < 3)
    {
        return;
    }
    const std::lock_guard guard(m_lock);
    (m_current ? m_states[*m_current].errors : m_runErrors).push_back(text);
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
    const std::lock_guard guard(m_lock);
    m_current.reset();
}

ItemEnd RunRecord::EndOf(size_t index) const
{
    const std::lock_guard guard(m_lock);
    const ItemState &state = m_states.at(index);
    if (!state.begun || m_current == index)
    {
        return ItemEnd::NotTried;
    }
    if (state.errors.empty())
    {
        return ItemEnd::Published;
    }
    const bool isUnknown = std::any_of(state.errors.begin(), state.errors.end(), [](const std::string &error) {
        return error.find(OutcomeUnknown) != error.npos;
    });
    return isUnknown ? ItemEnd::Unknown : ItemEnd::Failed;
}

std::string RunRecord::ItemState::Reason(const ErrorWords &words) const
{
    return errors.size() > 1 ? errors.front() : ReasonOfEntry(errors.back(), words);
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

RunSummary RunRecord::Summarize(bool cancelled, const ErrorWords &words, const Variables &variables) const
{
    size_t published = 0;
    FileList failed;
    FileList unknown;
    for (const RefusedFile &refused : m_collection.refused)
    {
        failed.Add(ShownPath(refused.path), refused.reason);
    }
    for (size_t i = 0; i < m_states.size(); ++i)
    {
        const std::string name = ShownPath(m_collection.items[i].TypedFile());
        switch (EndOf(i))
        {
        case ItemEnd::Published:
            ++published;
            break;
        case ItemEnd::NotTried:
            failed.Add(name, cancelled ? "not tried, the run was cancelled" : "not tried");
            break;
        case ItemEnd::Unknown:
            unknown.Add(name, m_states[i].Reason(words));
            break;
        case ItemEnd::Failed:
            failed.Add(name, m_states[i].Reason(words));
            break;
        }
    }
    const size_t total = m_states.size() + m_collection.refused.size();
    if (total == 0 && m_runErrors.empty())
    {
        return {ExitCode::SomeFailed, "Nothing to publish.\n"};
    }

    RunSummary summary;
    for (const std::string &error : m_runErrors)
    {
        summary.text += OneSafeLine(ReasonOfEntry(error, words)) + "\n";
    }
    if (published == total && m_runErrors.empty())
    {
        summary.text += "Published " + Count(total, "picture", "pictures") + ".\n";
        return summary;
    }
    summary.exitCode = cancelled ? ExitCode::Cancelled : ExitCode::SomeFailed;
    summary.text += "Published " + std::to_string(published) + " of " + Count(total, "picture", "pictures") + ".";
    failed.AppendTo(summary.text, " was not uploaded:", " were not uploaded:");
    unknown.AppendTo(summary.text, " may be published or not; look at Flickr before you publish it again:",
                     " may be published or not; look at Flickr before you publish them again:");
    summary.text += summary.text.ends_with('\n') ? "" : "\n";
    for (const std::string &advice : AdviceFor(Errors(), variables))
    {
        summary.text += OneSafeLine(advice) + "\n";
    }
    return summary;
}
