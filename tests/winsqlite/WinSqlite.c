/* Wine has no winsqlite3.dll, which is a part of Windows: this one hands the calls that our programs make to the
   system's SQLite. Wine loads it as one of its own DLLs. */
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <sqlite3.h>

#include <stdlib.h>

char *CDECL wine_get_unix_file_name(LPCWSTR name);

int WINAPI open_database(const char *file, sqlite3 **database)
{
    WCHAR name[4096];
    char *path;
    int result;

    *database = NULL;
    if (!MultiByteToWideChar(CP_UTF8, 0, file, -1, name, 4096) || !(path = wine_get_unix_file_name(name)))
    {
        return SQLITE_CANTOPEN;
    }
    result = sqlite3_open(path, database);
    HeapFree(GetProcessHeap(), 0, path);
    return result;
}

#define HAND_ON(type, name, parameters, arguments)                                                                    \
    type WINAPI win_##name parameters { return sqlite3_##name arguments; }

HAND_ON(const char *, errmsg, (sqlite3 * database), (database))
HAND_ON(int, close_v2, (sqlite3 * database), (database))
HAND_ON(int, busy_timeout, (sqlite3 * database, int time), (database, time))
HAND_ON(int, prepare_v2, (sqlite3 * database, const char *sql, int length, sqlite3_stmt **made, const char **rest),
        (database, sql, length, made, rest))
HAND_ON(int, bind_text64,
        (sqlite3_stmt * made, int at, const char *text, sqlite3_uint64 length, void (*end)(void *), unsigned char code),
        (made, at, text, length, end, code))
HAND_ON(int, bind_int64, (sqlite3_stmt * made, int at, sqlite3_int64 number), (made, at, number))
HAND_ON(int, step, (sqlite3_stmt * made), (made))
HAND_ON(int, finalize, (sqlite3_stmt * made), (made))
HAND_ON(int, column_count, (sqlite3_stmt * made), (made))
HAND_ON(int, column_type, (sqlite3_stmt * made, int at), (made, at))
HAND_ON(const unsigned char *, column_text, (sqlite3_stmt * made, int at), (made, at))
HAND_ON(int, column_bytes, (sqlite3_stmt * made, int at), (made, at))
HAND_ON(sqlite3_int64, column_int64, (sqlite3_stmt * made, int at), (made, at))
