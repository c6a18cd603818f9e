// Streams over files. Positions and sizes have 64 bits; nothing of the file is kept in memory.
#include "platform/kernel32/PathText.h"
#include "platform/ole32/StreamBase.h"

#include <shlwapi.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr DWORD AccessMask = STGM_READ | STGM_WRITE | STGM_READWRITE;

std::string FolderOf(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

HRESULT LastFailure(int error)
{
    static constexpr struct
    {
        int error;
        DWORD code;
    } codes[] = {
        {ENOENT, ERROR_FILE_NOT_FOUND},
        {ENOTDIR, ERROR_PATH_NOT_FOUND},
        {EACCES, ERROR_ACCESS_DENIED},
        {EPERM, ERROR_ACCESS_DENIED},
        {EISDIR, ERROR_ACCESS_DENIED},
        {EROFS, ERROR_WRITE_PROTECT},
        {ENOSPC, ERROR_DISK_FULL},
        {EDQUOT, ERROR_DISK_FULL},
        {EFBIG, ERROR_DISK_FULL},
        {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
        {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
        {ETXTBSY, ERROR_SHARING_VIOLATION},
        {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
        {EINVAL, ERROR_INVALID_PARAMETER},
    };
    for (const auto &entry : codes)
    {
        if (entry.error == error)
        {
            return HRESULT_FROM_WIN32(entry.code);
        }
    }
    return HRESULT_FROM_WIN32(ERROR_IO_DEVICE);
}

class FileStream final : public StreamBase<FileStream>
{
public:
    // Takes over the descriptor.
    FileStream(int file, DWORD mode, const WideText &name) : m_file(file), m_mode(mode), m_name(name) {}
    ~FileStream() { close(m_file); }

    STDMETHODIMP Read(void *bytes, ULONG wanted, ULONG *read) noexcept override
    {
        if (read != nullptr)
        {
            *read = 0;
        }
        if (bytes == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        if ((m_mode & AccessMask) == STGM_WRITE)
        {
            return STG_E_ACCESSDENIED;
        }
        ULONG got = 0;
        while (got < wanted)
        {
            const ssize_t part = pread(m_file, static_cast<BYTE *>(bytes) + got, wanted - got, m_position);
            if (part < 0 && errno == EINTR)
            {
                continue;
            }
            if (part < 0)
            {
                return LastFailure(errno);
            }
            if (part == 0)
            {
                break;
            }
            got += static_cast<ULONG>(part);
            m_position += part;
        }
        if (read != nullptr)
        {
            *read = got;
        }
        return got == wanted ? S_OK : S_FALSE;
    }

    STDMETHODIMP Write(const void *bytes, ULONG count, ULONG *written) noexcept override
    {
        if (written != nullptr)
        {
            *written = 0;
        }
        if (bytes == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        if ((m_mode & AccessMask) == STGM_READ)
        {
            return STG_E_ACCESSDENIED;
        }
        ULONG put = 0;
        HRESULT result = S_OK;
        while (put < count && SUCCEEDED(result))
        {
            const ssize_t part = pwrite(m_file, static_cast<const BYTE *>(bytes) + put, count - put, m_position);
            if (part >= 0)
            {
                put += static_cast<ULONG>(part);
                m_position += part;
            }
            else if (errno != EINTR)
            {
                result = LastFailure(errno);
            }
        }
        if (written != nullptr)
        {
            *written = put;
        }
        return result;
    }

    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override
    {
        ULONGLONG target = 0;
        const bool valid = NewPosition(move, origin, m_position, Size(), target);
        m_position = valid ? static_cast<off_t>(target) : m_position;
        if (position != nullptr)
        {
            position->QuadPart = m_position;
        }
        return valid ? S_OK : STG_E_INVALIDFUNCTION;
    }

    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override
    {
        if ((m_mode & AccessMask) == STGM_READ)
        {
            return STG_E_ACCESSDENIED;
        }
        return ftruncate(m_file, static_cast<off_t>(size.QuadPart)) == 0 ? S_OK : LastFailure(errno);
    }

    STDMETHODIMP Stat(STATSTG *status, DWORD flags) noexcept override
    {
        if (status == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        *status = STATSTG{};
        struct stat attributes;
        if (fstat(m_file, &attributes) != 0)
        {
            return LastFailure(errno);
        }
        if ((flags & STATFLAG_NONAME) == 0)
        {
            const size_t bytes = (m_name.size() + 1) * sizeof(WCHAR);
            status->pwcsName = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
            if (status->pwcsName == nullptr)
            {
                return E_OUTOFMEMORY;
            }
            std::memcpy(status->pwcsName, m_name.c_str(), bytes);
        }
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = attributes.st_size;
        status->grfMode = m_mode;
        return S_OK;
    }

    STDMETHODIMP Clone(IStream **clone) noexcept override
    {
        if (clone == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        *clone = nullptr;
        return E_NOTIMPL;
    }

private:
    ULONGLONG Size() const
    {
        struct stat attributes;
        return fstat(m_file, &attributes) == 0 ? attributes.st_size : 0;
    }

    int m_file;
    DWORD m_mode;
    WideText m_name;
    off_t m_position = 0;
};

// As Windows: another code if the folder is missing too.
HRESULT OpenFailure(const std::string &path, int error)
{
    struct stat status;
    if (error == ENOENT && stat(FolderOf(path).c_str(), &status) != 0)
    {
        return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    }
    return LastFailure(error);
}

int OpenFlags(DWORD mode)
{
    // Not blocking: a pipe by that name must not hang the caller.
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    flags |= (mode & AccessMask) == STGM_READ ? O_RDONLY : (mode & AccessMask) == STGM_WRITE ? O_WRONLY : O_RDWR;
    return flags | (mode & STGM_CREATE ? O_CREAT | O_TRUNC : 0);
}
} // namespace

HRESULT WINAPI SHCreateStreamOnFileW(LPCWSTR path, DWORD mode, IStream **stream)
{
    if (stream == nullptr || path == nullptr)
    {
        return E_INVALIDARG;
    }
    *stream = nullptr;
    if ((mode & AccessMask) == AccessMask || (mode & (STGM_TRANSACTED | STGM_SIMPLE | STGM_DELETEONRELEASE)) != 0)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&]() -> HRESULT {
        const std::string name = PathToBytes(path);
        const int file = open(name.c_str(), OpenFlags(mode), 0666);
        if (file < 0)
        {
            return OpenFailure(name, errno);
        }
        struct stat attributes;
        if (fstat(file, &attributes) != 0 || !S_ISREG(attributes.st_mode))
        {
            close(file);
            return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
        }
        return FileStream::CreateInstance(nullptr, __uuidof(IStream), reinterpret_cast<void **>(stream), file,
                                          mode, WideText(path));
    });
}
