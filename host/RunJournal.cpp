#include "host/RunJournal.h"

#include "host/FileDigest.h"
#include "host/FileNames.h"

RunJournal::RunJournal(Journal *journal, JournalAccount account, const RunRecord &record,
                       std::function<void(const std::string &)> tell)
    : m_journal(journal), m_account(std::move(account)), m_record(record), m_tell(std::move(tell))
{
}

void RunJournal::FileBegins(size_t item, const std::filesystem::path &file)
{
    if (m_journal == nullptr)
    {
        return;
    }
    const std::lock_guard guard(m_lock);
    Kept &kept = m_kept[item];
    if (kept.file.path != file) // the plug-in asks again where it tries again
    {
        Look(kept, file);
        WriteLocked(item, kept);
    }
}

void RunJournal::ItemChanged(size_t item, bool isOver)
{
    if (m_journal == nullptr)
    {
        return;
    }
    const std::lock_guard guard(m_lock);
    auto kept = m_kept.find(item);
    if (kept == m_kept.end())
    {
        if (m_record.EndOf(item) != ItemEnd::Published)
        {
            return;
        }
        kept = m_kept.try_emplace(item).first;
        Look(kept->second, m_record.Items()[item].File(0));
    }
    if (WriteLocked(item, kept->second) && isOver)
    {
        m_kept.erase(kept);
    }
}

void RunJournal::RunEnds()
{
    const std::lock_guard guard(m_lock);
    for (auto &[item, kept] : m_kept)
    {
        if (!WriteLocked(item, kept))
        {
            m_tell("Isn't in the journal: " + ShownPath(kept.file.path) + " " + m_record.IdsOf(item).photo);
        }
    }
    m_kept.clear();
    m_toldOfFault = false;
}

void RunJournal::Look(Kept &kept, const std::filesystem::path &file)
{
    kept.file = LookAtFile(file).value_or(FileState{.path = file});
    kept.file.sha256 = DigestOfFile(file);
}

bool RunJournal::WriteLocked(size_t item, Kept &kept)
{
    const ItemEnd end = m_record.EndOf(item);
    try
    {
        if (end == ItemEnd::Failed)
        {
            m_journal->Forget(kept.id);
            kept.id = 0;
            return true;
        }
        if (kept.id == 0)
        {
            kept.id = m_journal->Begin(m_account, kept.file);
        }
        if (end != kept.end && (end == ItemEnd::Published || end == ItemEnd::HandedIn))
        {
            const ServiceIds ids = m_record.IdsOf(item);
            m_journal->Settle(kept.id,
                              end == ItemEnd::Published ? JournalOutcome::Published : JournalOutcome::HandedIn,
                              ids.photo, ids.ticket);
        }
        kept.end = end;
        return true;
    }
    catch (const ProfileError &error)
    {
        if (!std::exchange(m_toldOfFault, true))
        {
            m_tell(std::string(error.what()) + " The run goes on.");
        }
        return false;
    }
}
