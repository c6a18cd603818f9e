#include "host/WholeFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace fs = std::filesystem;

namespace
{
[[noreturn]] void ThrowErrno(const char *deed, const fs::path &path)
{
    throw std::system_error(errno, std::generic_category(), std::string(deed) + " " + path.native());
}

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number >= 0)
        {
            ::close(m_number);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int Number() const { return m_number; }

private:
    int m_number;
};

int OpenOrThrow(const fs::path &path, int flags, mode_t mode, const char *deed)
{
    const int number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    if (number < 0)
    {
        ThrowErrno(deed, path);
    }
    return number;
}

void WriteAll(int descriptor, std::string_view content, const fs::path &path)
{
    while (!content.empty())
    {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno != EINTR)
        {
            ThrowErrno("writing", path);
        }
        content.remove_prefix(static_cast<size_t>(std::max<ssize_t>(written, 0)));
    }
}
} // namespace

std::error_code TryToRead(const fs::path &file)
{
    const Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    return opened.Number() < 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
}

std::string FileErrorWords(const std::error_code &error)
{
    return error.message();
}

std::optional<std::string> ReadWholeFile(const fs::path &file, size_t limit)
{
    const Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.Number() < 0)
    {
        if (errno == ENOENT)
        {
            return std::nullopt;
        }
        ThrowErrno("opening", file);
    }
    std::string content;
    char part[4096];
    for (;;)
    {
        const ssize_t count = ::read(opened.Number(), part, sizeof(part));
        if (count == 0)
        {
            return content;
        }
        if (count < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            ThrowErrno("reading", file);
        }
        content.append(part, static_cast<size_t>(count));
        if (content.size() > limit)
        {
            errno = EFBIG;
            ThrowErrno("reading", file);
        }
    }
}

FileReplacement::FileReplacement(fs::path file, std::string_view content)
    : m_file(std::move(file)), m_pending(m_file.native() + ".new")
{
    // A leftover could be readable by others, or a link.
    ::unlink(m_pending.c_str());
    const Descriptor opened(OpenOrThrow(m_pending, O_WRONLY | O_CREAT | O_EXCL, 0600, "creating"));
    try
    {
        WriteAll(opened.Number(), content, m_pending);
        if (::fsync(opened.Number()) != 0)
        {
            ThrowErrno("writing", m_pending);
        }
    }
    catch (...)
    {
        ::unlink(m_pending.c_str());
        throw;
    }
}

FileReplacement::~FileReplacement()
{
    if (!m_pending.empty())
    {
        ::unlink(m_pending.c_str());
    }
}

void FileReplacement::Commit()
{
    if (::rename(m_pending.c_str(), m_file.c_str()) != 0)
    {
        ThrowErrno("replacing", m_file);
    }
    m_pending.clear();
    const Descriptor folder(OpenOrThrow(m_file.parent_path(), O_RDONLY | O_DIRECTORY, 0, "opening"));
    ::fsync(folder.Number());
}

FolderLock::FolderLock(const fs::path &folder)
    : m_lock(OpenOrThrow(folder / "lock", O_RDWR | O_CREAT, 0600, "locking"))
{
    while (::flock(static_cast<int>(m_lock), LOCK_EX) != 0)
    {
        if (errno != EINTR)
        {
            const int error = errno;
            ::close(static_cast<int>(m_lock));
            errno = error;
            ThrowErrno("locking", folder);
        }
    }
}

FolderLock::~FolderLock()
{
    ::close(static_cast<int>(m_lock));
}

fs::path SetFileAside(const fs::path &file, const std::string &suffix)
{
    for (int number = 1;; ++number)
    {
        const fs::path aside(file.native() + suffix + "-" + std::to_string(number));
        // A link fails where a rename would replace what has the name already.
        if (::link(file.c_str(), aside.c_str()) == 0)
        {
            if (::unlink(file.c_str()) != 0)
            {
                ThrowErrno("renaming", file);
            }
            return aside;
        }
        if (errno != EEXIST)
        {
            ThrowErrno("renaming", file);
        }
    }
}

void MakePrivateFolder(const fs::path &folder)
{
    if (folder.has_parent_path() && folder != folder.parent_path())
    {
        struct stat status;
        if (::stat(folder.parent_path().c_str(), &status) != 0 && errno == ENOENT)
        {
            MakePrivateFolder(folder.parent_path());
        }
    }
    if (::mkdir(folder.c_str(), 0700) != 0)
    {
        const int error = errno;
        struct stat status;
        if (::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        {
            return;
        }
        errno = error == EEXIST ? ENOTDIR : error;
        ThrowErrno("making", folder);
    }
}
