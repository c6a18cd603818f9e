#include "platform/advapi32/RegistryDatabase.h"

#include "platform/advapi32/RegistryText.h"

#include <cstdlib>
#include <utility>

namespace
{
std::string DefaultPath()
{
    if (const char *file = std::getenv("HALVORA_REGISTRY_FILE"); file && *file)
    {
        return file;
    }
    const char *data = std::getenv("XDG_DATA_HOME");
    const char *home = std::getenv("HOME");
    // The base directory specification: a relative path counts as none.
    const std::string folder = data && *data == '/' ? data : std::string(home ? home : "") + "/.local/share";
    return folder + "/halvora/registry.reg";
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
    std::string bytes;
    m_content = RegistryContent();
    m_loaded = true;
    m_blocked = false;
    if (const LSTATUS result = ReadWholeFile(m_path, bytes, m_stamp); result != ERROR_SUCCESS)
    {
        m_blocked = true;
        m_problem = RegistryProblem{m_path, result, {}};
        return;
    }
    if (!m_stamp.exists)
    {
        return;
    }
    if (auto parsed = ParseRegistryText(bytes))
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
    const bool heldBefore = m_fileLock.IsHeld();
    if (m_fileLock.Acquire(m_path) != ERROR_SUCCESS)
    {
        return false;
    }
    std::string bytes;
    std::string keptAs;
    bool done = ReadWholeFile(m_path, bytes, m_stamp) == ERROR_SUCCESS;
    if (auto parsed = done ? ParseRegistryText(bytes) : std::nullopt)
    {
        m_content = std::move(*parsed);
    }
    else if (done && (done = SetFileAside(m_path, keptAs) == ERROR_SUCCESS))
    {
        m_stamp = {};
        m_problem = RegistryProblem{m_path, ERROR_SUCCESS, keptAs};
    }
    if (!heldBefore)
    {
        m_fileLock.Release();
    }
    return done;
}

void RegistryDatabase::Refresh()
{
    if (m_path.empty())
    {
        m_path = DefaultPath();
    }
    // While the lock is held, no other process changes the file, and the content may be ahead of it.
    if (!m_loaded || (!m_fileLock.IsHeld() && !(StampOf(m_path) == m_stamp)))
    {
        Load();
    }
}

LSTATUS RegistryDatabase::Lock()
{
    if (m_fileLock.IsHeld())
    {
        return ERROR_SUCCESS;
    }
    if (m_path.empty())
    {
        m_path = DefaultPath();
    }
    const LSTATUS result = m_fileLock.Acquire(m_path);
    if (result == ERROR_SUCCESS)
    {
        // Another process may have replaced the file during the wait, and a stamp can come back: a file system
        // gives the number of a node to the next file, and its clock has ticks of some milliseconds.
        Load();
    }
    // ERROR_PATH_NOT_FOUND: the folder can't be made.
    return result == ERROR_PATH_NOT_FOUND ? ERROR_ACCESS_DENIED : result;
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
        m_fileLock.Release();
    }
    return result;
}

LSTATUS RegistryDatabase::Save()
{
    const LSTATUS result = ReplaceFile(m_path, FormatRegistryText(m_content), m_stamp);
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
    m_fileLock.Release();
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
    return m_path.empty() ? DefaultPath() : m_path;
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
