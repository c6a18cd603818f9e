// The one registry of the process: its content, kept in step with its file.
#pragma once

#include "com/WholeFile.h"
#include "platform/advapi32/RegistryContent.h"
#include "platform/advapi32/RegistryStore.h"

#include <functional>
#include <mutex>
#include <optional>
#include <tuple>

#include <sys/types.h>

// Device, node, size and time of change: differs between two contents of a file, nearly always, and is compared in
// place of reading the file.
using FileStamp = std::tuple<dev_t, ino_t, off_t, time_t, long>;

class RegistryDatabase
{
public:
    static RegistryDatabase &Instance();

    // Calls look with the content as it is now. look must not call the registry again.
    LSTATUS Read(const std::function<LSTATUS(const RegistryContent &)> &look);

    // Calls change with the content, under the lock between processes, and writes the file if the
    // result is ERROR_SUCCESS. If writing fails the content is again what the file says.
    LSTATUS Write(const std::function<LSTATUS(RegistryContent &)> &change);

    void SetPath(const std::string &path);
    std::string Path();
    std::optional<RegistryProblem> TakeProblem();

    void BeginBatch();
    LSTATUS EndBatch();

private:
    RegistryDatabase() = default;

    void Refresh(); // reads the file again if it has changed
    LSTATUS Lock(); // against other processes; the content is then what the file says
    void Load();
    bool SetAside();
    LSTATUS Save();

    std::mutex m_lock;
    std::filesystem::path m_path;
    RegistryContent m_content;
    FileStamp m_stamp;
    bool m_loaded = false;
    bool m_blocked = false; // the file couldn't be read and mustn't be replaced
    std::optional<FileLock> m_fileLock;
    int m_batches = 0;
    bool m_changedInBatch = false;
    std::optional<RegistryProblem> m_problem;
};
