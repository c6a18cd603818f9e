// A file of tables, by SQLite. A process that ends at any moment leaves it whole, and so does a crash of the system,
// after which the last changes may be missing. Thread-safe: a lock admits one statement at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

class DatabaseError : public std::runtime_error
{
public:
    // The words don't end with a full stop.
    DatabaseError(const std::string &words, bool isDamaged) : std::runtime_error(words), m_isDamaged(isDamaged) {}

    // The file isn't what was written: no database, or one with spoiled pages.
    bool IsDamaged() const { return m_isDamaged; }

private:
    bool m_isDamaged;
};

// Whether several processes may use a file at a time, or the first one has it alone until it closes it.
enum class DatabaseUse
{
    Shared,
    Alone
};

class Database
{
public:
    using Value = std::variant<std::int64_t, std::string>;
    using Row = std::vector<Value>;

    // Opens or creates the file. Throws DatabaseError, as every member does.
    explicit Database(const std::filesystem::path &file, DatabaseUse use = DatabaseUse::Shared);
    ~Database();

    // Runs one statement with the values in place of its "?", in order, and returns all rows. NULL reads as 0.
    std::vector<Row> Run(const char *sql, const std::vector<Value> &values = {});

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// The column of a row as a number or a text; the column must be of that kind.
std::int64_t NumberAt(const Database::Row &row, std::size_t column);
const std::string &TextAt(const Database::Row &row, std::size_t column);
