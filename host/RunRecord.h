// What became of each item of a run, as far as the host learns it: by the records that the plug-in
// asks for, and by what it writes to the log in between.
#pragma once

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
    HandedIn, // the service gave a ticket: it publishes the picture in its own time, or refuses it
    Unknown,  // sent, but the service's answer didn't come: it may be published
    Failed
};

// How the program ends, for the scripts that call it.
enum class ExitCode
{
    Success = 0,    // of publish: every picture was published
    SomeFailed = 1, // some or all of what was asked for was not done
    Usage = 2,      // the command line was wrong; nothing was done
    Cancelled = 3
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

// What the service gave a picture: one of the two, or neither where it isn't known.
struct ServiceIds
{
    std::string photo;
    std::string ticket;
};

// After so many failures to connect in a row no further picture is worth its making.
constexpr size_t MostFailuresToConnect = 5;

// Several runs of the plug-in, one after the other, may share a record; together they are one to the user.
class RunRecord
{
public:
    explicit RunRecord(ItemCollection collection);

    const std::vector<PictureItem> &Items() const { return m_collection.items; }

    // Called, on the thread that brings the news, when more is known of an item, and last when it is over. To be set
    // before the run.
    void WatchBy(std::function<void(size_t index, bool isOver)> watch) { m_watch = std::move(watch); }

    // The items that no run has tried yet, in their order.
    std::vector<size_t> NotTried() const;

    // The item before it, if any, is over. Any thread.
    void ItemBegins(size_t index);

    // Entries of level 3 and 4 belong to the item that is running, or to the run itself. Any thread.
    void NoteEntry(int level, const std::string &text);

    // Why the host could not decode the file of the item that is running. It is told if the item fails by that code.
    void NoteFault(HRESULT code, const std::string &words);

    // The service has taken the picture of the item that is running. Any thread.
    void NoteIds(const ServiceIds &ids);
    ServiceIds IdsOf(size_t index) const;

    // The text with the path of the item that is running as the user wrote it. Any thread.
    std::string AsTyped(const std::string &text) const;

    // The item that is running, if any. Any thread.
    std::optional<size_t> Current() const;

    // The last item is over.
    void RunEnds();

    // The item counts as not tried, whatever became of it.
    void TryAgain(size_t index);

    // Any thread. An item that is running counts as not tried until the plug-in or the service has told its end.
    ItemEnd EndOf(size_t index) const;

    // Why the item wasn't published; empty if it was or wasn't tried.
    std::string ReasonOf(size_t index, const ErrorWords &words) const;

    // The item that was tried last, if any, and the plug-in's last error entry on it, empty if there is none.
    std::optional<size_t> LastTried() const;
    std::string LastErrorOf(size_t index) const;

    // How many of the items that were tried last failed since there was no connection.
    size_t FailuresToConnect() const;

    // Counts, each file that wasn't published with the reason, and what a user can do about the commonest
    // reasons. Of files that weren't tried only a few are named.
    RunSummary Summarize(bool cancelled, const ErrorWords &words, const ConnectionSettings &settings = {}) const;

private:
    struct ItemState
    {
        bool begun = false;
        std::vector<std::string> errors;
        HRESULT faultCode = S_OK;
        std::string faultWords;
        ServiceIds ids;

        // The last entry says that the item failed; an earlier one says why.
        std::string Reason(const ErrorWords &words) const;
    };

    std::vector<std::string> Errors() const;
    void Tell(std::optional<size_t> index, bool isOver) const;

    mutable std::mutex m_lock;
    ItemCollection m_collection;
    std::vector<ItemState> m_states;
    std::vector<std::string> m_runErrors;
    std::optional<size_t> m_current;
    std::optional<size_t> m_lastTried;
    std::function<void(size_t index, bool isOver)> m_watch;
};
