// The index file, an SQLite database. Thread-safe: a lock admits one statement at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace loopback
{

class Database
{
public:
    using Value = std::variant<std::int64_t, std::string>;
    using Row = std::vector<Value>;

    // Opens or creates the file. Throws std::runtime_error, as every member does.
    explicit Database(const std::filesystem::path &file);
    ~Database();

    // Runs one statement with the values in place of its "?", in order, and returns all rows. NULL reads as 0.
    std::vector<Row> Run(const char *sql, const std::vector<Value> &values = {});

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// Adds the column, empty in every row, unless the table has it: older versions made indexes without it.
void EnsureTextColumn(Database &database, const std::string &table, const std::string &column);

// The column of a row as a number or a text; the column must be of that kind.
std::int64_t NumberAt(const Database::Row &row, std::size_t column);
const std::string &TextAt(const Database::Row &row, std::size_t column);

} // namespace loopback
