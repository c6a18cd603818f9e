#include "database/Database.h"

#include <sqlite3.h>

#include <mutex>

namespace
{
struct CloseDatabase
{
    void operator()(sqlite3 *database) const { sqlite3_close_v2(database); }
};

struct FinalizeStatement
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};

using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;
} // namespace

struct Database::State
{
    std::unique_ptr<sqlite3, CloseDatabase> database;
    std::mutex mutex;

    void Check(int result, int wanted)
    {
        if (result != wanted)
        {
            const bool isOfDisk = result == SQLITE_CANTOPEN || result == SQLITE_READONLY ||
                                  result == SQLITE_IOERR || result == SQLITE_FULL;
            throw DatabaseError(
                (result == SQLITE_BUSY ? "another process is using it" : sqlite3_errmsg(database.get())) +
                    std::string(isOfDisk ? ". Check its permissions and the space on the disk" : ""),
                result == SQLITE_CORRUPT || result == SQLITE_NOTADB);
        }
    }
};

Database::Database(const std::filesystem::path &file, DatabaseUse use) : m_state(std::make_unique<State>())
{
    sqlite3 *database = nullptr;
    const std::u8string name = file.u8string();
    const int result = sqlite3_open(reinterpret_cast<const char *>(name.c_str()), &database);
    m_state->database.reset(database);
    m_state->Check(result, SQLITE_OK);
    if (use == DatabaseUse::Alone)
    {
        Run("PRAGMA locking_mode = EXCLUSIVE");
    }
    else
    {
        sqlite3_busy_timeout(database, 5000);
    }
    Run("PRAGMA journal_mode = WAL");
    Run("PRAGMA synchronous = NORMAL");
}

Database::~Database() = default;

std::vector<Database::Row> Database::Run(const char *sql, const std::vector<Value> &values)
{
    std::lock_guard lock(m_state->mutex);
    sqlite3_stmt *prepared = nullptr;
    m_state->Check(sqlite3_prepare_v2(m_state->database.get(), sql, -1, &prepared, nullptr), SQLITE_OK);
    const Statement statement(prepared);
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const int position = static_cast<int>(i) + 1;
        const auto *text = std::get_if<std::string>(&values[i]);
        m_state->Check(
            text ? sqlite3_bind_text64(prepared, position, text->data(), text->size(), SQLITE_STATIC, SQLITE_UTF8)
                 : sqlite3_bind_int64(prepared, position, std::get<std::int64_t>(values[i])),
            SQLITE_OK);
    }
    std::vector<Row> rows;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(prepared)) == SQLITE_ROW)
    {
        Row row;
        for (int column = 0; column < sqlite3_column_count(prepared); ++column)
        {
            if (sqlite3_column_type(prepared, column) == SQLITE_TEXT)
            {
                const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(prepared, column));
                row.emplace_back(
                    std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(prepared, column))));
            }
            else
            {
                row.emplace_back(static_cast<std::int64_t>(sqlite3_column_int64(prepared, column)));
            }
        }
        rows.push_back(std::move(row));
    }
    m_state->Check(result, SQLITE_DONE);
    return rows;
}

std::int64_t NumberAt(const Database::Row &row, std::size_t column)
{
    return std::get<std::int64_t>(row.at(column));
}

const std::string &TextAt(const Database::Row &row, std::size_t column)
{
    return std::get<std::string>(row.at(column));
}
