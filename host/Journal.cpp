#include "host/Journal.h"

#include "host/FileDigest.h"
#include "host/FileNames.h"
#include "host/TextEncodings.h"

#include "com/WholeFile.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <limits>
#include <map>

namespace fs = std::filesystem;

namespace
{
using namespace std::chrono;

const std::string Selection =
    "SELECT id, path, size, time, sha256, account, began, outcome, photo, ticket FROM uploads ";
const std::string OfAccount = "(token = ? OR (account <> '' AND account = ?)) ";
// An outcome that is known comes first, and of several the last.
const std::string BestFirst = "ORDER BY outcome = 0, id DESC ";

JournalEntry EntryOf(const Database::Row &row)
{
    JournalEntry entry;
    entry.id = NumberAt(row, 0);
    entry.file = {PathOfNameBytes(TextAt(row, 1)), static_cast<std::uintmax_t>(NumberAt(row, 2)), NumberAt(row, 3),
                  TextAt(row, 4)};
    entry.photosUrl = TextAt(row, 5);
    entry.when = NumberAt(row, 6);
    entry.outcome = static_cast<JournalOutcome>(NumberAt(row, 7));
    entry.photo = TextAt(row, 8);
    entry.ticket = TextAt(row, 9);
    return entry;
}

void MakeTables(Database &database)
{
    database.Run("CREATE TABLE IF NOT EXISTS uploads(id INTEGER PRIMARY KEY, account TEXT NOT NULL, "
                 "token TEXT NOT NULL, path TEXT NOT NULL, size INTEGER NOT NULL, time INTEGER NOT NULL, "
                 "sha256 TEXT NOT NULL, began INTEGER NOT NULL, outcome INTEGER NOT NULL, photo TEXT NOT NULL, "
                 "ticket TEXT NOT NULL)");
    for (const char *const column : {"path", "size", "sha256"})
    {
        database.Run(
            ("CREATE INDEX IF NOT EXISTS by_" + std::string(column) + " ON uploads(" + column + ")").c_str());
    }
}

// What can still be read of a damaged file: from its beginning and from its end, each as far as the damage.
std::map<std::int64_t, Database::Row> RowsThatCanBeRead(const fs::path &file)
{
    std::map<std::int64_t, Database::Row> rows;
    for (const char *const next : {"id > ? ORDER BY id", "id < ? ORDER BY id DESC"})
    {
        std::int64_t last = next[3] == '>' ? 0 : std::numeric_limits<std::int64_t>::max();
        try
        {
            Database damaged(file);
            const std::string select =
                "SELECT id, account, token, path, size, time, sha256, began, outcome, photo, "
                "ticket FROM uploads NOT INDEXED WHERE " +
                std::string(next) + " LIMIT 1";
            for (auto row = damaged.Run(select.c_str(), {last}); !row.empty();
                 row = damaged.Run(select.c_str(), {last}))
            {
                last = NumberAt(row[0], 0);
                if (!rows.emplace(last, row[0]).second)
                {
                    break;
                }
            }
        }
        catch (const DatabaseError &)
        {
            // The rest lies behind the damage.
        }
    }
    return rows;
}

// The files that the library makes beside it get its permissions.
void MakePrivateFile(const fs::path &file)
{
    std::ofstream made(file, std::ios::app);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

fs::path WithSuffix(fs::path file, const char *suffix)
{
    return file += suffix;
}
} // namespace

std::optional<FileState> LookAtFile(const fs::path &file)
{
    std::error_code error;
    FileState state{file, fs::file_size(file, error), 0, ""};
    const auto time = error ? fs::file_time_type() : fs::last_write_time(file, error);
    if (error)
    {
        return std::nullopt;
    }
    state.time = duration_cast<nanoseconds>(file_clock::to_sys(time).time_since_epoch()).count();
    return state;
}

JournalAccount JournalAccount::Of(const AccountData &account)
{
    return {Utf8FromText(account.photosUrl.value_or(WideText())),
            DigestOfText(Utf8FromText(account.token.value_or(WideText())))};
}

std::string JournalEntry::LocalTime() const
{
    const auto time = static_cast<std::time_t>(when);
    const std::tm *const parts = std::localtime(&time);
    std::string text(16, '-');
    if (parts != nullptr)
    {
        text.resize(std::strftime(text.data(), text.size() + 1, "%Y-%m-%d %H:%M", parts));
    }
    return text;
}

std::string JournalEntry::Page() const
{
    if (photo.empty())
    {
        return photo;
    }
    return photosUrl.empty() ? "https://www.flickr.com/photo.gne?id=" + photo
                             : photosUrl + (photosUrl.ends_with('/') ? "" : "/") + photo + "/";
}

Journal::Journal(const Profile &profile) : m_profile(profile)
{
    Run("SELECT 1");
}

void Journal::Open()
{
    const fs::path file = m_profile.JournalFile();
    const bool isNew = !fs::exists(file);
    MakePrivateFile(file);
    try
    {
        m_database = std::make_unique<Database>(file);
    }
    catch (const DatabaseError &)
    {
        if (isNew) // where the library is missing, nothing is left
        {
            fs::remove(file);
        }
        throw;
    }
    if (TextAt(m_database->Run("PRAGMA quick_check(1)").at(0), 0) != "ok")
    {
        throw DatabaseError("it doesn't hold together", true);
    }
    MakeTables(*m_database);
}

// Whether another process has set the damaged one aside meanwhile.
bool Journal::IsMended()
{
    try
    {
        Open();
        return true;
    }
    catch (const DatabaseError &error)
    {
        m_database.reset();
        if (!error.IsDamaged())
        {
            throw;
        }
        return false;
    }
}

void Journal::SetAside(const std::string &words)
{
    const fs::path file = m_profile.JournalFile();
    m_database.reset();
    const FileLock lock(m_profile.LockFile());
    if (IsMended())
    {
        return;
    }
    const fs::path aside = SetFileAside(file, ".damaged");
    std::error_code none;
    // The last changes, if the file itself hasn't got them yet.
    fs::rename(WithSuffix(file, "-wal"), WithSuffix(aside, "-wal"), none);
    fs::remove(WithSuffix(file, "-shm"), none);
    const auto rows = RowsThatCanBeRead(aside);
    Open();
    m_database->Run("BEGIN");
    for (const auto &[id, row] : rows)
    {
        m_database->Run("INSERT INTO uploads VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", row);
    }
    m_database->Run("COMMIT");
    m_notices.push_back("The journal of what was published, " + ShownPath(file) + ", is damaged (" + words +
                        "). It was kept as " + ShownPath(aside.filename()) + "; " + std::to_string(rows.size()) +
                        " of its entries could be read and are used. What the others told is forgotten, and would "
                        "be published again.");
}

std::vector<Database::Row> Journal::Run(const std::string &sql, const std::vector<Database::Value> &values)
{
    const std::lock_guard guard(m_lock);
    try
    {
        try
        {
            if (!m_database)
            {
                Open();
            }
            return m_database->Run(sql.c_str(), values);
        }
        catch (const DatabaseError &error)
        {
            if (!error.IsDamaged())
            {
                throw;
            }
            SetAside(error.what());
            return m_database->Run(sql.c_str(), values);
        }
    }
    catch (const std::exception &error)
    {
        throw ProfileError("The journal of what was published, " + ShownPath(m_profile.JournalFile()) +
                           ", can't be used: " + error.what() + ".");
    }
}

std::vector<std::string> Journal::TakeNotices()
{
    const std::lock_guard guard(m_lock);
    return std::exchange(m_notices, {});
}

void Journal::Recognize(const JournalAccount &account)
{
    if (!account.photosUrl.empty())
    {
        Run("UPDATE uploads SET account = ? WHERE token = ? AND account = ''", {account.photosUrl, account.token});
    }
}

std::optional<JournalEntry> Journal::Find(const JournalAccount &account, const fs::path &file)
{
    const std::optional<FileState> state = LookAtFile(file);
    if (!state)
    {
        return std::nullopt;
    }
    const auto size = static_cast<std::int64_t>(state->size);
    auto rows =
        Run(Selection + "WHERE path = ? AND size = ? AND time = ? AND " + OfAccount + BestFirst + "LIMIT 1",
            {NameBytes(file), size, state->time, account.token, account.photosUrl});
    // A file is read only where one of its size was sent.
    if (rows.empty() && !Run("SELECT 1 FROM uploads WHERE size = ? LIMIT 1", {size}).empty())
    {
        rows = Run(Selection + "WHERE sha256 = ? AND sha256 <> '' AND " + OfAccount + BestFirst + "LIMIT 1",
                   {DigestOfFile(file), account.token, account.photosUrl});
    }
    return rows.empty() ? std::nullopt : std::optional(EntryOf(rows[0]));
}

std::int64_t Journal::Begin(const JournalAccount &account, const FileState &file)
{
    const auto now = duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    return NumberAt(
        Run("INSERT INTO uploads(account, token, path, size, time, sha256, began, outcome, photo, ticket) "
            "VALUES(?, ?, ?, ?, ?, ?, ?, 0, '', '') RETURNING id",
            {account.photosUrl, account.token, NameBytes(file.path), static_cast<std::int64_t>(file.size),
             file.time, file.sha256, std::int64_t{now}})
            .at(0),
        0);
}

void Journal::Settle(std::int64_t id, JournalOutcome outcome, const std::string &photo, const std::string &ticket)
{
    Run("UPDATE uploads SET outcome = ?, photo = ?, ticket = ? WHERE id = ?",
        {static_cast<std::int64_t>(outcome), photo, ticket, id});
}

void Journal::Forget(std::int64_t id)
{
    Run("DELETE FROM uploads WHERE id = ?", {id});
}

std::vector<JournalEntry> Journal::Entries(const fs::path &file)
{
    std::vector<Database::Row> rows;
    if (file.empty())
    {
        rows = Run(Selection + "ORDER BY id DESC");
    }
    else
    {
        rows = Run(Selection + "WHERE path = ? OR (sha256 = ? AND sha256 <> '') ORDER BY id DESC",
                   {NameBytes(file), DigestOfFile(file)});
    }
    std::vector<JournalEntry> entries;
    std::ranges::transform(rows, std::back_inserter(entries), EntryOf);
    return entries;
}
