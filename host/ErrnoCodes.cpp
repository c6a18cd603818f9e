#include "host/ErrnoCodes.h"

#include <cerrno>
#include <utility>

HRESULT HresultFromErrno(int number) noexcept
{
    static constexpr std::pair<int, DWORD> Codes[] = {
        {ENOENT, ERROR_FILE_NOT_FOUND},
        {ENOTDIR, ERROR_PATH_NOT_FOUND},
        {EACCES, ERROR_ACCESS_DENIED},
        {EPERM, ERROR_ACCESS_DENIED},
        {EROFS, ERROR_WRITE_PROTECT},
        {ENOSPC, ERROR_DISK_FULL},
        {EDQUOT, ERROR_DISK_FULL},
        {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
        {EISDIR, ERROR_ACCESS_DENIED},
        {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
        {EEXIST, ERROR_FILE_EXISTS},
        {EIO, ERROR_IO_DEVICE},
        {EINVAL, ERROR_FILE_INVALID}, // TryToRead of a pipe or a device, which has taken a file's place
    };
    for (const auto &[error, code] : Codes)
    {
        if (error == number)
        {
            return HRESULT_FROM_WIN32(code);
        }
    }
    return E_FAIL;
}
