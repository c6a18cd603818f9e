// The registry's store: what lies below HKEY_CURRENT_USER, in one text file (RegistryText.h) that all processes of a
// user share.
//
// Each change replaces the file as a whole, or leaves the old one as it was; changes by another
// process are seen with the next call, and none is lost.
// A remark below the heading holds length and checksum of the rest. A file that is damaged, or was changed
// without deleting that remark, is moved aside as NAME.damaged-N when it is read.
// All functions may be called from any thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

// Names the file. Without it the store is what the environment variable HALVORA_REGISTRY_FILE
// names, or else halvora/registry.reg in $XDG_DATA_HOME (~/.local/share). Open keys stay valid and
// refer to the new file.
void SetRegistryStorePath(const std::string &path);
std::string RegistryStorePath();

struct RegistryProblem
{
    std::string file;                   // the store's path
    LSTATUS readResult = ERROR_SUCCESS; // another code: the file could not be read; otherwise it is damaged
    std::string keptAs;                 // the new path of the damaged file; empty if it could not be moved

    // Where the file was not moved, the store reads as empty, and every change fails with ERROR_ACCESS_DENIED.
};

// Reads the store's file if need be. What was found wrong with it; each problem is returned once.
std::optional<RegistryProblem> RegistryStoreProblem();

// Gathers all changes of its lifetime, by whatever thread, in one replacement of the file. Other
// processes wait with their changes meanwhile.
class RegistryStoreBatch
{
public:
    RegistryStoreBatch();
    ~RegistryStoreBatch();
    RegistryStoreBatch(const RegistryStoreBatch &) = delete;
    RegistryStoreBatch &operator=(const RegistryStoreBatch &) = delete;

    // Writes what has changed: ERROR_SUCCESS, ERROR_ACCESS_DENIED, ERROR_DISK_FULL,
    // ERROR_WRITE_FAULT. After a failure the changes are gone.
    LSTATUS Commit();

private:
    bool m_open;
};
