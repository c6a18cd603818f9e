// What became of the files that were given to the service, for each account: a table in a file of the profile, so that
// no run publishes again what an earlier one has published. A file is entered before the plug-in may send it; until
// its outcome is entered too, it is unknown, and stays so if the process ends in between, however it ends.
#pragma once

#include "host/InitData.h"
#include "host/Profile.h"

#include "database/Database.h"

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

enum class JournalOutcome
{
    Unknown,   // it was being sent, or is; or the service's answer didn't come
    Published, // the service gave it an id, or nothing but its consent
    HandedIn   // the service gave a ticket, and publishes it in its own time, or refuses it
};

// A file as it lies on disk.
struct FileState
{
    std::filesystem::path path; // absolute
    std::uintmax_t size = 0;    // bytes
    std::int64_t time = 0;      // of the last change, in nanoseconds since 1970
    std::string sha256;         // 64 hexadecimal digits, empty if it wasn't read
};

// Without its digest; nothing if there is no such file.
std::optional<FileState> LookAtFile(const std::filesystem::path &file);

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
    // A damaged journal is set aside, here or when the damage is met, what can still be read of it goes into a new
    // one, and a notice says so.
    explicit Journal(const Profile &profile);

    // Those that weren't taken before.
    std::vector<std::string> TakeNotices();

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
    void Open();
    bool IsMended();
    void SetAside(const std::string &words);
    std::vector<Database::Row> Run(const std::string &sql, const std::vector<Database::Value> &values = {});

    const Profile m_profile;
    std::recursive_mutex m_lock;
    std::unique_ptr<Database> m_database;
    std::vector<std::string> m_notices;
};
