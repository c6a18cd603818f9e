// Streams over files, for reading. Positions and sizes have 64 bits; nothing of the file is kept in memory.
#include "com/ErrnoCodes_posix.h"
#include "com/TextConversion.h"
#include "platform/ole32/StreamBase.h"

#include <shlwapi.h>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
std::string FolderOf(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

HRESULT FailureOf(int error)
{
    return HRESULT_FROM_WIN32(Win32FromErrno(error));
}

class FileStream final : public StreamBase<FileStream>
{
public:
    // Takes over the descriptor.
    FileStream(int file, DWORD mode) : m_file(file), m_mode(mode) {}
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
                return FailureOf(errno);
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

    STDMETHODIMP Write(const void *, ULONG, ULONG *written) noexcept override
    {
        if (written != nullptr)
        {
            *written = 0;
        }
        return STG_E_ACCESSDENIED;
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

    STDMETHODIMP SetSize(ULARGE_INTEGER) noexcept override { return STG_E_ACCESSDENIED; }

    // Without the name.
    STDMETHODIMP Stat(STATSTG *status, DWORD) noexcept override
    {
        if (status == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        *status = STATSTG{};
        struct stat attributes;
        if (fstat(m_file, &attributes) != 0)
        {
            return FailureOf(errno);
        }
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = attributes.st_size;
        status->grfMode = m_mode;
        return S_OK;
    }

private:
    ULONGLONG Size() const
    {
        struct stat attributes;
        return fstat(m_file, &attributes) == 0 ? attributes.st_size : 0;
    }

    int m_file;
    DWORD m_mode;
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
    return FailureOf(error);
}
} // namespace

HRESULT WINAPI SHCreateStreamOnFileW(LPCWSTR path, DWORD mode, IStream **stream)
{
    if (stream == nullptr || path == nullptr)
    {
        return E_INVALIDARG;
    }
    *stream = nullptr;
    constexpr DWORD sharing = STGM_SHARE_DENY_NONE | STGM_SHARE_DENY_READ | STGM_SHARE_DENY_WRITE;
    if ((mode & ~sharing) != STGM_READ)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&]() -> HRESULT {
        const std::string name = PathToBytes(path);
        // Not blocking: a pipe by that name must not hang the caller.
        const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
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
                                          mode);
    });
}
