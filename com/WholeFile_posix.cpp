#include "com/WholeFile.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

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

// Descriptor -1 with errno set if that fails. Opening waits for nothing: a pipe by that name has no content.
Descriptor OpenToRead(const fs::path &file)
{
    const int number = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status;
    if (number >= 0 && ::fstat(number, &status) == 0 && !S_ISREG(status.st_mode))
    {
        ::close(number);
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return Descriptor(-1);
    }
    return Descriptor(number);
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

fs::path WithoutLinks(const fs::path &file)
{
    std::error_code error;
    fs::path target = fs::canonical(file, error);
    return error ? file : target;
}

std::error_code TryToRead(const fs::path &file)
{
    const Descriptor opened = OpenToRead(file);
    return opened.Number() < 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
}

std::optional<std::string> ReadWholeFile(const fs::path &file, size_t limit)
{
    const Descriptor opened = OpenToRead(file);
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

FileReplacement::FileReplacement(const fs::path &file, std::string_view content)
    : m_file(WithoutLinks(file)), m_pending(m_file.native() + ".new")
{
    // What a crash left may be readable by others, or a link.
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
    // The new file is there; where its folder can't be opened, it gets to the disk a little later.
    const fs::path folder = m_file.has_parent_path() ? m_file.parent_path() : ".";
    ::fsync(Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)).Number());
}

FileLock::FileLock(const fs::path &file)
    : m_lock(OpenOrThrow(file, O_RDWR | O_CREAT | O_NOFOLLOW, 0600, "locking"))
{
    while (::flock(static_cast<int>(m_lock), LOCK_EX) != 0)
    {
        if (errno != EINTR)
        {
            const int error = errno;
            ::close(static_cast<int>(m_lock));
            errno = error;
            ThrowErrno("locking", file);
        }
    }
}

FileLock::~FileLock()
{
    ::close(static_cast<int>(m_lock));
}

fs::path SetFileAside(const fs::path &given, const std::string &suffix)
{
    const fs::path file = WithoutLinks(given);
    for (int number = 1;; ++number)
    {
        fs::path aside(file.native() + suffix + "-" + std::to_string(number));
        // link fails where the name is taken; rename would replace the file of that name.
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
        const bool isThere = ::stat(folder.c_str(), &status) == 0;
        if (isThere && S_ISDIR(status.st_mode))
        {
            return;
        }
        // A name that exists and leads nowhere is a symbolic link: the error is that of its target.
        errno = error != EEXIST ? error : isThere ? ENOTDIR : ENOENT;
        ThrowErrno("making", folder);
    }
}

std::string ForeignAccess(const fs::path &path)
{
    struct stat status;
    if (::stat(path.c_str(), &status) != 0)
    {
        return {};
    }
    if (status.st_uid != ::geteuid() && status.st_uid != 0)
    {
        const passwd *const owner = ::getpwuid(status.st_uid);
        return "belongs to " + (owner != nullptr ? std::string(owner->pw_name)
                                                 : "the user of number " + std::to_string(status.st_uid));
    }
    return (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 ? "can be written by other users" : std::string();
}

fs::path UserDataFolder()
{
    // The XDG base directory specification: a relative path is to be ignored.
    if (const char *data = std::getenv("XDG_DATA_HOME"); data != nullptr && fs::path(data).is_absolute())
    {
        return data;
    }
    const char *home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? fs::path(home) / ".local" / "share" : fs::path();
}
