#include "host/RunRecord.h"

#include "host/FileNames.h"
#include "host/SafeLine.h"

#include <windows.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr std::string_view CodeMark = "0x";
constexpr size_t CodeDigits = 8;
constexpr std::string_view HexDigits = "0123456789abcdefABCDEF";

std::string Trimmed(std::string text)
{
    const auto last = text.find_last_not_of(" \t\r\n");
    text.resize(last == text.npos ? 0 : last + 1);
    const auto first = text.find_first_not_of(" \t\r\n");
    return first == text.npos ? std::string() : text.substr(first);
}

bool SaysNothing(const std::string &text)
{
    return text.empty() || text.starts_with("(internal");
}

// The first file of the item stands for it.
std::string NameOf(const PictureItem &item)
{
    return ShownPath(item.File(0));
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
        const std::string rest = Trimmed(entry.substr(end + 1));
        if (!SaysNothing(rest))
        {
            return rest;
        }
        const auto code = static_cast<HRESULT>(std::strtoul(digits.c_str(), nullptr, 16));
        const std::string meaning = Trimmed(words(code));
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
    return state.errors.empty() ? ItemEnd::Published : ItemEnd::Failed;
}

RunSummary RunRecord::Summarize(bool cancelled, const ErrorWords &words) const
{
    size_t published = 0;
    std::string failures;
    const auto addFailure = [&](const std::string &name, const std::string &reason) {
        failures += "  " + name + ": " + OneSafeLine(reason) + "\n";
    };
    for (const RefusedFile &refused : m_collection.refused)
    {
        addFailure(ShownPath(refused.path), refused.reason);
    }
    for (size_t i = 0; i < m_states.size(); ++i)
    {
        const ItemEnd end = EndOf(i);
        published += end == ItemEnd::Published;
        if (end == ItemEnd::NotTried)
        {
            addFailure(NameOf(m_collection.items[i]),
                       cancelled ? "not tried, the run was cancelled" : "not tried");
        }
        else if (end == ItemEnd::Failed)
        {
            // The last entry says that the item failed; an earlier one says why.
            const auto &errors = m_states[i].errors;
            const std::string cause = errors.size() > 1 ? errors.front() : ReasonOfEntry(errors.back(), words);
            addFailure(NameOf(m_collection.items[i]), cause);
        }
    }
    const size_t total = m_states.size() + m_collection.refused.size();

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
    summary.text += "Published " + std::to_string(published) + " of " + Count(total, "picture", "pictures") +
                    ". " + Count(total - published, "file", "files") +
                    (total - published == 1 ? " was not uploaded:\n" : " were not uploaded:\n") + failures;
    return summary;
}
