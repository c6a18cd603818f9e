// The index file, an SQLite database. One statement at a time: thread-safe by a lock of its own.
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

    // Runs one statement with its "?" filled in order; all rows of the answer. NULL reads as 0.
    std::vector<Row> Run(const char *sql, const std::vector<Value> &values = {});

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// The column of a row as a number or a text; the column must be of that kind.
// Adds the column, empty in every row, to the table of an index of before the column was thought of.
void EnsureTextColumn(Database &database, const std::string &table, const std::string &column);

std::int64_t NumberAt(const Database::Row &row, std::size_t column);
const std::string &TextAt(const Database::Row &row, std::size_t column);

} // namespace loopback
