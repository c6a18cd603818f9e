#include "platform/advapi32/RegistryFile.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <tuple>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr off_t LargestFile = 64 << 20;

LSTATUS LastStatus()
{
    switch (errno)
    {
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ELOOP:
        return ERROR_ACCESS_DENIED;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENOENT:
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    default:
        return ERROR_WRITE_FAULT;
    }
}

class Descriptor
{
public:
    explicit Descriptor(int file) : m_file(file) {}
    ~Descriptor()
    {
        if (m_file >= 0)
        {
            close(m_file);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int Get() const { return m_file; }
    bool IsOpen() const { return m_file >= 0; }

private:
    int m_file;
};

FileStamp StampFrom(const struct stat &status)
{
    return {true, status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

std::string FolderOf(const std::string &path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Where a chain of symbolic links ends; the path itself if it is none.
std::string ResolveLinks(const std::string &path)
{
    struct free_deleter
    {
        void operator()(char *text) const { std::free(text); }
    };
    const std::unique_ptr<char, free_deleter> resolved(realpath(path.c_str(), nullptr));
    return resolved ? resolved.get() : path;
}

void MakeFolders(const std::string &folder)
{
    if (mkdir(folder.c_str(), 0700) != 0 && errno == ENOENT && folder.find('/') != std::string::npos)
    {
        MakeFolders(FolderOf(folder));
        mkdir(folder.c_str(), 0700);
    }
}

bool WriteAll(int file, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
        {
            return false;
        }
        bytes.remove_prefix(written > 0 ? written : 0);
    }
    return true;
}
} // namespace

bool FileStamp::operator==(const FileStamp &other) const
{
    const auto fields = [](const FileStamp &stamp) {
        return std::tuple(stamp.exists, stamp.device, stamp.node, stamp.size, stamp.modified.tv_sec,
                          stamp.modified.tv_nsec);
    };
    return fields(*this) == fields(other);
}

FileStamp StampOf(const std::string &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? StampFrom(status) : FileStamp();
}

LSTATUS ReadWholeFile(const std::string &path, std::string &bytes, FileStamp &stamp)
{
    bytes.clear();
    stamp = {};
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen())
    {
        const LSTATUS result = errno == ENOENT || errno == ENOTDIR ? ERROR_SUCCESS : LastStatus();
        stamp = StampOf(path);
        return result;
    }
    struct stat status;
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > LargestFile)
    {
        stamp = StampOf(path);
        return ERROR_ACCESS_DENIED;
    }
    stamp = StampFrom(status);
    bytes.resize(status.st_size);
    size_t filled = 0;
    while (filled < bytes.size())
    {
        const ssize_t got = read(file.Get(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR)
        {
            continue;
        }
        if (got < 0)
        {
            return ERROR_READ_FAULT;
        }
        if (got == 0)
        {
            break;
        }
        filled += got;
    }
    bytes.resize(filled);
    return ERROR_SUCCESS;
}

LSTATUS ReplaceFile(const std::string &path, const std::string &bytes, FileStamp &stamp)
{
    const std::string target = ResolveLinks(path);
    if (access(target.c_str(), W_OK) != 0 && errno != ENOENT)
    {
        return LastStatus();
    }
    // The lock's holder is the only writer, so one name serves, and what a crash left is taken over.
    const std::string fresh = target + ".new";
    const Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    struct stat status;
    if (!file.IsOpen())
    {
        return LastStatus();
    }
    if (fchmod(file.Get(), 0600) != 0 || !WriteAll(file.Get(), bytes) || fsync(file.Get()) != 0 ||
        fstat(file.Get(), &status) != 0 || rename(fresh.c_str(), target.c_str()) != 0)
    {
        const LSTATUS result = LastStatus();
        unlink(fresh.c_str());
        return result;
    }
    stamp = StampFrom(status);
    const Descriptor folder(open(FolderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen())
    {
        fsync(folder.Get());
    }
    return ERROR_SUCCESS;
}

LSTATUS SetFileAside(const std::string &path, std::string &keptAs)
{
    const std::string target = ResolveLinks(path);
    for (int number = 1;; ++number)
    {
        const std::string name = target + ".damaged-" + std::to_string(number);
        struct stat status;
        if (lstat(name.c_str(), &status) == 0)
        {
            continue;
        }
        if (rename(target.c_str(), name.c_str()) != 0)
        {
            return LastStatus();
        }
        keptAs = name;
        return ERROR_SUCCESS;
    }
}

LSTATUS FileLock::Acquire(const std::string &path)
{
    if (IsHeld())
    {
        return ERROR_SUCCESS;
    }
    const std::string name = ResolveLinks(path) + ".lock";
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
    m_file = open(name.c_str(), flags, 0600);
    if (m_file < 0 && errno == ENOENT)
    {
        MakeFolders(FolderOf(name));
        m_file = open(name.c_str(), flags, 0600);
    }
    if (m_file < 0)
    {
        return LastStatus();
    }
    while (flock(m_file, LOCK_EX) != 0)
    {
        if (errno != EINTR)
        {
            const LSTATUS result = LastStatus();
            Release();
            return result;
        }
    }
    return ERROR_SUCCESS;
}

void FileLock::Release()
{
    if (IsHeld())
    {
        close(m_file);
        m_file = -1;
    }
}
