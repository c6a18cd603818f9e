#include "loopback/Documents.h"

#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <mutex>
#include <stdexcept>

namespace loopback
{

struct Documents::State
{
    struct Close
    {
        void operator()(sqlite3 *database) const { sqlite3_close_v2(database); }
    };

    std::filesystem::path file;
    std::unique_ptr<sqlite3, Close> database;
    std::mutex mutex;
};

Documents::Documents(const std::filesystem::path &file) : m_state(std::make_unique<State>())
{
    m_state->file = file;
    sqlite3 *database = nullptr;
    const int result = sqlite3_open(file.c_str(), &database);
    m_state->database.reset(database);
    Check(result, SQLITE_OK);
    // Locks the file until it is closed.
    Run("PRAGMA locking_mode = EXCLUSIVE");
    Run("PRAGMA journal_mode = WAL");
    Run("PRAGMA synchronous = NORMAL");
    if (!Run("SELECT name FROM sqlite_master WHERE name = 'photos'").empty())
    {
        throw std::runtime_error(file.string() +
                                 " was made by an earlier version: use another store, or delete this");
    }
    Run("CREATE TABLE IF NOT EXISTS documents (number INTEGER PRIMARY KEY, collection TEXT NOT NULL, "
        "name TEXT NOT NULL, document TEXT NOT NULL, UNIQUE (collection, name))");
}

Documents::~Documents() = default;

void Documents::Check(int result, int wanted) const
{
    if (result != wanted)
    {
        throw std::runtime_error(m_state->file.string() + ": " +
                                 (result == SQLITE_BUSY ? "another process is using this store"
                                                        : sqlite3_errmsg(m_state->database.get())));
    }
}

void Documents::Put(const std::string &collection, const std::string &name, const Json &document)
{
    Run("INSERT INTO documents (collection, name, document) VALUES (?, ?, ?) "
        "ON CONFLICT (collection, name) DO UPDATE SET document = excluded.document",
        // Bytes that aren't UTF-8 become U+FFFD.
        {collection, name, document.dump(-1, ' ', false, Json::error_handler_t::replace)});
}

std::optional<Json> Documents::Find(const std::string &collection, const std::string &name) const
{
    const auto found = Run("SELECT document FROM documents WHERE collection = ? AND name = ?", {collection, name});
    return found.empty() ? std::nullopt : std::optional(Json::parse(found[0]));
}

std::vector<Json> Documents::All(const std::string &collection) const
{
    std::vector<Json> documents;
    for (const auto &text :
         Run("SELECT document FROM documents WHERE collection = ? ORDER BY number", {collection}))
    {
        documents.push_back(Json::parse(text));
    }
    return documents;
}

// Runs a statement with the values in place of its "?", in order, and returns the first column of all rows.
std::vector<std::string> Documents::Run(const char *sql, const std::vector<std::string> &values) const
{
    const std::lock_guard lock(m_state->mutex);
    sqlite3_stmt *prepared = nullptr;
    Check(sqlite3_prepare_v2(m_state->database.get(), sql, -1, &prepared, nullptr), SQLITE_OK);
    const auto finalize = [](sqlite3_stmt *statement) { sqlite3_finalize(statement); };
    const std::unique_ptr<sqlite3_stmt, decltype(finalize)> statement(prepared);
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        Check(sqlite3_bind_text64(prepared, static_cast<int>(i) + 1, values[i].data(), values[i].size(),
                                  SQLITE_STATIC, SQLITE_UTF8),
              SQLITE_OK);
    }
    std::vector<std::string> rows;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(prepared)) == SQLITE_ROW)
    {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(prepared, 0));
        rows.emplace_back(text, static_cast<std::size_t>(sqlite3_column_bytes(prepared, 0)));
    }
    Check(result, SQLITE_DONE);
    return rows;
}

} // namespace loopback
