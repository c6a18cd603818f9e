// The service's index: JSON documents by collection and name, in an SQLite file that only one process uses at a time.
// Thread-safe.
#pragma once

#include "database/Database.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

// Keeps its members in the order in which they were added.
using Json = nlohmann::ordered_json;

class Documents
{
public:
    // Opens or creates the file. Throws std::runtime_error, as every member does.
    explicit Documents(const std::filesystem::path &file);

    // A document of that name is replaced, and keeps its place.
    void Put(const std::string &collection, const std::string &name, const Json &document);
    std::optional<Json> Find(const std::string &collection, const std::string &name);
    // In the order in which they were added.
    std::vector<Json> All(const std::string &collection);

private:
    std::vector<Database::Row> Run(const char *sql, const std::vector<Database::Value> &values);

    const std::filesystem::path m_file;
    Database m_database;
};

} // namespace loopback
