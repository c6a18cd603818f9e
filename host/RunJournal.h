// Keeps the journal during a run.
#pragma once

#include "host/Journal.h"
#include "host/RunRecord.h"

#include <functional>
#include <map>
#include <mutex>

class RunJournal
{
public:
    // tell gets a warning, once, when the journal can't be written; the run goes on. journal may be null, and
    // nothing is kept then. The others must outlive the run.
    RunJournal(Journal *journal, JournalAccount account, const RunRecord &record,
               std::function<void(const std::string &)> tell);

    // The plug-in is about to get this file of the item. Any thread.
    void FileBegins(size_t item, const std::filesystem::path &file);

    // More is known of the item, or it is over. Any thread.
    void ItemChanged(size_t item, bool isOver);

    // The run is over: writes once more what couldn't be written. What still can't is told, a line for each file.
    void RunEnds();

private:
    struct Kept
    {
        FileState file;
        std::int64_t id = 0;             // 0: isn't in the journal
        ItemEnd end = ItemEnd::NotTried; // as it stands in the journal
    };

    static void Look(Kept &kept, const std::filesystem::path &file);
    bool WriteLocked(size_t item, Kept &kept);

    Journal *const m_journal;
    const JournalAccount m_account;
    const RunRecord &m_record;
    const std::function<void(const std::string &)> m_tell;
    std::mutex m_lock;
    std::map<size_t, Kept> m_kept; // of items that aren't over, or couldn't be written
    bool m_toldOfFault = false;
};
