// What became of each item of a run, as far as the host learns it: by the records that the plug-in
// asks for, and by what it writes to the log in between.
#pragma once

#include "host/ExitCode.h"
#include "host/PictureItems.h"
#include "host/RunAdvice.h"

#include "com/WideText.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

enum class ItemEnd
{
    NotTried,
    Published,
    Unknown, // sent, but the service's answer didn't come: it may be published
    Failed
};

struct RunSummary
{
    ExitCode exitCode = ExitCode::Success;
    std::string text; // UTF-8 lines, each closed by a line feed
};

// Words of an HRESULT in UTF-8, empty if there are none.
using ErrorWords = std::function<std::string(HRESULT)>;

// The reason in an error entry of the plug-in: the service's own words, or the words of the code that
// the entry names where the entry says nothing more.
std::string ReasonOfEntry(const std::string &entry, const ErrorWords &words);

class RunRecord
{
public:
    explicit RunRecord(ItemCollection collection);

    const std::vector<PictureItem> &Items() const { return m_collection.items; }

    // The item before it, if any, is over. Any thread.
    void ItemBegins(size_t index);

    // Entries of level 3 and 4 belong to the item that is running, or to the run itself. Any thread.
    void NoteEntry(int level, const std::string &text);

    // The text with the path of the item that is running as the user wrote it. Any thread.
    std::string AsTyped(const std::string &text) const;

    // The item that is running, if any. Any thread.
    std::optional<size_t> Current() const;

    // The last item is over.
    void RunEnds();

    // Any thread. An item that is running counts as not tried.
    ItemEnd EndOf(size_t index) const;

    // Counts, each file that wasn't published with the reason, and what a user can do about the commonest
    // reasons.
    RunSummary Summarize(bool cancelled, const ErrorWords &words, const Variables &variables = {}) const;

private:
    struct ItemState
    {
        bool begun = false;
        std::vector<std::string> errors;

        // The last entry says that the item failed; an earlier one says why.
        std::string Reason(const ErrorWords &words) const;
    };

    std::vector<std::string> Errors() const;

    mutable std::mutex m_lock;
    ItemCollection m_collection;
    std::vector<ItemState> m_states;
    std::vector<std::string> m_runErrors;
    std::optional<size_t> m_current;
};
