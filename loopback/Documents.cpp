#include "loopback/Documents.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

namespace loopback
{

namespace
{
template <class Call>
auto NamingFile(const std::filesystem::path &file, const Call &call)
{
    try
    {
        return call();
    }
    catch (const DatabaseError &error)
    {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}
} // namespace

Documents::Documents(const std::filesystem::path &file)
    : m_file(file), m_database(NamingFile(file, [&] { return Database(file, DatabaseUse::Alone); }))
{
    if (!Run("SELECT name FROM sqlite_master WHERE name = ?", {"photos"}).empty())
    {
        throw std::runtime_error(file.string() +
                                 " was made by an earlier version: use another store, or delete this");
    }
    Run("CREATE TABLE IF NOT EXISTS documents (number INTEGER PRIMARY KEY, collection TEXT NOT NULL, "
        "name TEXT NOT NULL, document TEXT NOT NULL, UNIQUE (collection, name))",
        {});
}

void Documents::Put(const std::string &collection, const std::string &name, const Json &document)
{
    Run("INSERT INTO documents (collection, name, document) VALUES (?, ?, ?) "
        "ON CONFLICT (collection, name) DO UPDATE SET document = excluded.document",
        // Bytes that aren't UTF-8 become U+FFFD.
        {collection, name, document.dump(-1, ' ', false, Json::error_handler_t::replace)});
}

std::optional<Json> Documents::Find(const std::string &collection, const std::string &name)
{
    const auto found = Run("SELECT document FROM documents WHERE collection = ? AND name = ?", {collection, name});
    return found.empty() ? std::nullopt : std::optional(Json::parse(TextAt(found[0], 0)));
}

std::vector<Json> Documents::All(const std::string &collection)
{
    std::vector<Json> documents;
    for (const auto &row :
         Run("SELECT document FROM documents WHERE collection = ? ORDER BY number", {collection}))
    {
        documents.push_back(Json::parse(TextAt(row, 0)));
    }
    return documents;
}

std::vector<Database::Row> Documents::Run(const char *sql, const std::vector<Database::Value> &values)
{
    return NamingFile(m_file, [&] { return m_database.Run(sql, values); });
}

} // namespace loopback
