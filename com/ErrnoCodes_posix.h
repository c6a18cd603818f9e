// The system's error numbers as the codes that a user of the Windows API expects.
#pragma once

#include <windows.h>

#include <cerrno>

// ERROR_IO_DEVICE for a number without a counterpart.
inline DWORD Win32FromErrno(int number) noexcept
{
    static constexpr struct
    {
        int Number;
        DWORD Code;
    } Codes[] = {
        {ENOENT, ERROR_FILE_NOT_FOUND},
        {ENOTDIR, ERROR_PATH_NOT_FOUND},
        {EACCES, ERROR_ACCESS_DENIED},
        {EPERM, ERROR_ACCESS_DENIED},
        {EISDIR, ERROR_ACCESS_DENIED},
        {EROFS, ERROR_WRITE_PROTECT},
        {ENOSPC, ERROR_DISK_FULL},
        {EDQUOT, ERROR_DISK_FULL},
        {EFBIG, ERROR_FILE_TOO_LARGE},
        {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
        {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
        {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
        {EEXIST, ERROR_FILE_EXISTS},
        {EINVAL, ERROR_FILE_INVALID}, // a pipe or a device in a file's place
    };
    for (const auto &[known, code] : Codes)
    {
        if (known == number)
        {
            return code;
        }
    }
    return ERROR_IO_DEVICE;
}
