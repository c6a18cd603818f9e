// What became of the files that were given to the service, for each account: a table in a file of the profile, so that
// no run publishes again what an earlier one has published. A file is entered before the plug-in may send it; until
// its outcome is entered too, it is unknown, and stays so if the process ends in between, however it ends.
#pragma once

#include "host/FileDigest.h"
#include "host/InitData.h"
#include "host/JournalFile.h"
#include "host/Profile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

enum class JournalOutcome
{
    Unknown,   // it was being sent, or is; or the service's answer didn't come
    Published, // the service gave it an id, or nothing but its consent
    HandedIn   // the service gave a ticket, and publishes it in its own time, or refuses it
};

// By which uploads of one account are told from those of others. The service's address of its photos, once it is
// known, also tells it after a new authorization; the token tells it before.
struct JournalAccount
{
    std::string photosUrl;
    std::string token; // its digest

    static JournalAccount Of(const AccountData &account);
};

struct JournalEntry
{
    std::int64_t id = 0;
    FileState file;
    std::string photosUrl; // of the account
    std::int64_t when = 0; // seconds since 1970
    JournalOutcome outcome = JournalOutcome::Unknown;
    std::string photo;  // the service's id, empty if it isn't known
    std::string ticket; // of a picture that was handed in

    // When, as the day and minute of the user's clock: "2026-03-01 17:05". To be called on one thread.
    std::string LocalTime() const;

    // The photo's page, empty if its id isn't known.
    std::string Page() const;
};

// Thread-safe; several processes may use the journal of one profile. Everything throws ProfileError for a journal
// that can't be read or written.
class Journal
{
public:
    explicit Journal(const Profile &profile) : m_file(profile) {}

    // As JournalFile::TakeNotices.
    std::vector<std::string> TakeNotices() { return m_file.TakeNotices(); }

    // Entries that were made before the account's address was known get it.
    void Recognize(const JournalAccount &account);

    // The upload to the account of this file as it is now, or of one with the same bytes. One whose outcome is known
    // is preferred.
    std::optional<JournalEntry> Find(const JournalAccount &account, const std::filesystem::path &file);

    // Enters a file that may be sent from now on, with an unknown outcome. Returns the entry's id.
    std::int64_t Begin(const JournalAccount &account, const FileState &file);

    void Settle(std::int64_t id, JournalOutcome outcome, const std::string &photo, const std::string &ticket);

    // The file wasn't published: takes the entry out again.
    void Forget(std::int64_t id);

    // Newest first; those of one file alone if it is named, known by its path or its bytes.
    std::vector<JournalEntry> Entries(const std::filesystem::path &file = {});

private:
    JournalFile m_file;
};
