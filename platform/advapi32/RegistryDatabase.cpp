#include "platform/advapi32/RegistryDatabase.h"

#include "com/ErrnoCodes_posix.h"
#include "platform/advapi32/RegistryText.h"

#include <cstdlib>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr size_t LargestFile = 64 << 20;

std::string DefaultPath()
{
    const char *file = std::getenv("HALVORA_REGISTRY_FILE");
    return file != nullptr && *file != '\0' ? file : (UserDataFolder() / "halvora" / "registry.reg").native();
}

FileStamp StampOf(const std::filesystem::path &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) != 0 ? FileStamp()
                                              : FileStamp(status.st_dev, status.st_ino, status.st_size,
                                                          status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
}

// ERROR_SUCCESS, or the failure that work throws.
template <class Work>
LSTATUS StatusOf(Work &&work)
{
    try
    {
        work();
        return ERROR_SUCCESS;
    }
    catch (const std::system_error &error)
    {
        return Win32FromErrno(error.code().value());
    }
}
} // namespace

RegistryDatabase &RegistryDatabase::Instance()
{
    // Never destroyed: objects that die at exit may still close keys.
    static auto *instance = new RegistryDatabase;
    return *instance;
}

void RegistryDatabase::Load()
{
    m_content = RegistryContent();
    m_loaded = true;
    m_blocked = false;
    // Before the file: of a change in between the next call is told.
    m_stamp = StampOf(m_path);
    std::optional<std::string> bytes;
    const LSTATUS result = StatusOf([&] { bytes = ReadWholeFile(m_path, LargestFile); });
    if (result != ERROR_SUCCESS)
    {
        m_blocked = true;
        m_problem = RegistryProblem{m_path, result, {}};
        return;
    }
    if (!bytes)
    {
        return;
    }
    if (auto parsed = ParseRegistryText(*bytes))
    {
        m_content = std::move(*parsed);
        return;
    }
    if (!SetAside())
    {
        m_blocked = true;
        m_problem = RegistryProblem{m_path, ERROR_SUCCESS, {}};
    }
}

// Another process may have repaired the file since it was read without the lock, so it is read again.
bool RegistryDatabase::SetAside()
{
    const bool heldBefore = m_fileLock.has_value();
    const LSTATUS result = StatusOf([&] {
        if (!heldBefore)
        {
            m_fileLock.emplace(WithoutLinks(m_path).native() + ".lock");
        }
        const auto bytes = ReadWholeFile(m_path, LargestFile);
        if (auto parsed = bytes ? ParseRegistryText(*bytes) : RegistryContent())
        {
            m_content = std::move(*parsed);
            return;
        }
        m_problem = RegistryProblem{m_path, ERROR_SUCCESS, SetFileAside(m_path, ".damaged")};
    });
    m_stamp = StampOf(m_path);
    if (!heldBefore)
    {
        m_fileLock.reset();
    }
    return result == ERROR_SUCCESS;
}

void RegistryDatabase::Refresh()
{
    if (m_path.empty())
    {
        m_path = DefaultPath();
    }
    // While the lock is held, no other process changes the file, and the content may be ahead of it.
    if (!m_loaded || (!m_fileLock && !(StampOf(m_path) == m_stamp)))
    {
        Load();
    }
}

LSTATUS RegistryDatabase::Lock()
{
    if (m_fileLock)
    {
        return ERROR_SUCCESS;
    }
    if (m_path.empty())
    {
        m_path = DefaultPath();
    }
    const LSTATUS result = StatusOf([&] {
        const std::filesystem::path file = std::filesystem::absolute(WithoutLinks(m_path));
        MakePrivateFolder(file.parent_path());
        m_fileLock.emplace(file.native() + ".lock");
    });
    if (result == ERROR_SUCCESS)
    {
        // Another process may have replaced the file during the wait, and a stamp can come back: a file system
        // gives the number of a node to the next file, and its clock has ticks of some milliseconds.
        Load();
    }
    return result;
}

LSTATUS RegistryDatabase::Read(const std::function<LSTATUS(const RegistryContent &)> &look)
{
    const std::lock_guard guard(m_lock);
    Refresh();
    return look(m_content);
}

LSTATUS RegistryDatabase::Write(const std::function<LSTATUS(RegistryContent &)> &change)
{
    const std::lock_guard guard(m_lock);
    LSTATUS result = Lock();
    if (result == ERROR_SUCCESS)
    {
        Refresh();
        result = m_blocked ? ERROR_ACCESS_DENIED : change(m_content);
        if (result == ERROR_SUCCESS && m_batches != 0)
        {
            m_changedInBatch = true;
        }
        else if (result == ERROR_SUCCESS)
        {
            result = Save();
        }
    }
    if (m_batches == 0)
    {
        m_fileLock.reset();
    }
    return result;
}

LSTATUS RegistryDatabase::Save()
{
    const LSTATUS result = StatusOf([&] {
        // To replace a file is a right of its folder, but one that is write-protected is meant to stay.
        if (::access(m_path.c_str(), W_OK) != 0 && errno != ENOENT)
        {
            throw std::system_error(errno, std::generic_category());
        }
        FileReplacement(m_path, FormatRegistryText(m_content)).Commit();
    });
    m_stamp = StampOf(m_path);
    m_loaded = result == ERROR_SUCCESS;
    return result;
}

void RegistryDatabase::BeginBatch()
{
    const std::lock_guard guard(m_lock);
    ++m_batches;
}

LSTATUS RegistryDatabase::EndBatch()
{
    const std::lock_guard guard(m_lock);
    if (--m_batches != 0)
    {
        return ERROR_SUCCESS;
    }
    const LSTATUS result = m_changedInBatch ? Save() : ERROR_SUCCESS;
    m_changedInBatch = false;
    m_fileLock.reset();
    return result;
}

void RegistryDatabase::SetPath(const std::string &path)
{
    const std::lock_guard guard(m_lock);
    m_path = path;
    m_loaded = false;
    m_problem.reset();
}

std::string RegistryDatabase::Path()
{
    const std::lock_guard guard(m_lock);
    return m_path.empty() ? DefaultPath() : m_path.native();
}

std::optional<RegistryProblem> RegistryDatabase::TakeProblem()
{
    const std::lock_guard guard(m_lock);
    Refresh();
    return std::exchange(m_problem, std::nullopt);
}

void SetRegistryStorePath(const std::string &path)
{
    RegistryDatabase::Instance().SetPath(path);
}

std::string RegistryStorePath()
{
    return RegistryDatabase::Instance().Path();
}

std::optional<RegistryProblem> RegistryStoreProblem()
{
    return RegistryDatabase::Instance().TakeProblem();
}

RegistryStoreBatch::RegistryStoreBatch() : m_open(true)
{
    RegistryDatabase::Instance().BeginBatch();
}

RegistryStoreBatch::~RegistryStoreBatch()
{
    Commit();
}

LSTATUS RegistryStoreBatch::Commit()
{
    return std::exchange(m_open, false) ? RegistryDatabase::Instance().EndBatch() : ERROR_SUCCESS;
}
