// SQLite as Windows has it: winsqlite3.dll, a part of the system since Windows 10. It is found when the first file is
// opened; a system without it can't open any.
#include <sqlite3.h>

#include <windows.h>

namespace
{
constexpr char NoLibrary[] = "this Windows has no winsqlite3.dll, which comes with Windows 10 and later";

HMODULE Library()
{
    static const HMODULE library = LoadLibraryExW(L"winsqlite3.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library;
}

template <class Function>
Function *Find(const char *name)
{
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(Library(), name)));
}
} // namespace

#define FORWARD(function, ...)                                                                                    \
    static auto *const found = Find<decltype(function)>(#function);                                               \
    return found(__VA_ARGS__)

extern "C"
{
    int sqlite3_open(const char *file, sqlite3 **database)
    {
        if (Library() == nullptr)
        {
            *database = nullptr;
            return SQLITE_ERROR;
        }
        FORWARD(sqlite3_open, file, database);
    }
    const char *sqlite3_errmsg(sqlite3 *database)
    {
        if (Library() == nullptr)
        {
            return NoLibrary;
        }
        FORWARD(sqlite3_errmsg, database);
    }
    int sqlite3_close_v2(sqlite3 *database)
    {
        FORWARD(sqlite3_close_v2, database);
    }
    int sqlite3_busy_timeout(sqlite3 *database, int milliseconds)
    {
        FORWARD(sqlite3_busy_timeout, database, milliseconds);
    }
    int sqlite3_prepare_v2(sqlite3 *database, const char *sql, int length, sqlite3_stmt **statement,
                           const char **rest)
    {
        FORWARD(sqlite3_prepare_v2, database, sql, length, statement, rest);
    }
    int sqlite3_bind_text64(sqlite3_stmt *statement, int position, const char *text, sqlite3_uint64 length,
                            void (*release)(void *), unsigned char encoding)
    {
        FORWARD(sqlite3_bind_text64, statement, position, text, length, release, encoding);
    }
    int sqlite3_bind_int64(sqlite3_stmt *statement, int position, sqlite3_int64 number)
    {
        FORWARD(sqlite3_bind_int64, statement, position, number);
    }
    int sqlite3_step(sqlite3_stmt *statement)
    {
        FORWARD(sqlite3_step, statement);
    }
    int sqlite3_finalize(sqlite3_stmt *statement)
    {
        FORWARD(sqlite3_finalize, statement);
    }
    int sqlite3_column_count(sqlite3_stmt *statement)
    {
        FORWARD(sqlite3_column_count, statement);
    }
    int sqlite3_column_type(sqlite3_stmt *statement, int column)
    {
        FORWARD(sqlite3_column_type, statement, column);
    }
    const unsigned char *sqlite3_column_text(sqlite3_stmt *statement, int column)
    {
        FORWARD(sqlite3_column_text, statement, column);
    }
    int sqlite3_column_bytes(sqlite3_stmt *statement, int column)
    {
        FORWARD(sqlite3_column_bytes, statement, column);
    }
    sqlite3_int64 sqlite3_column_int64(sqlite3_stmt *statement, int column)
    {
        FORWARD(sqlite3_column_int64, statement, column);
    }
}
