#include "host/JournalFile.h"

#include "host/FileNames.h"

#include "com/WholeFile.h"

#include <fstream>
#include <limits>
#include <map>
#include <utility>

namespace fs = std::filesystem;

namespace
{
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

JournalFile::JournalFile(const Profile &profile) : m_profile(profile)
{
    Run("SELECT 1");
}

void JournalFile::Open()
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
bool JournalFile::IsMended()
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

void JournalFile::SetAside(const std::string &words)
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

std::vector<Database::Row> JournalFile::Run(const std::string &sql, const std::vector<Database::Value> &values)
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

std::vector<std::string> JournalFile::TakeNotices()
{
    const std::lock_guard guard(m_lock);
    return std::exchange(m_notices, {});
}
