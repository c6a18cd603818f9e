// Files that are read and replaced as a whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

// No error if this is a file that can be read, else the system's.
std::error_code TryToRead(const std::filesystem::path &file);

// The system's words for a failure with a file, in UTF-8.
std::string FileErrorWords(const std::error_code &error);

// Nothing if there is no such file. Throws std::system_error for any other failure, for a file of more than
// limit bytes, and for a folder, pipe or device.
std::optional<std::string> ReadWholeFile(const std::filesystem::path &file, size_t limit);

// The new content of a file, readable by its owner alone. It takes the file's place at Commit, in one
// step and after it reached the disk: a crash at any moment leaves the old content or the new one
// whole. The next replacement overwrites what a crash leaves behind. A symbolic link stays one: the file that
// it leads to is replaced. One at a time per file: the caller holds a lock. All throw std::system_error.
class FileReplacement
{
public:
    FileReplacement(std::filesystem::path file, std::string_view content);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    void Commit();

private:
    std::filesystem::path m_file;
    std::filesystem::path m_pending;
};

// Holds the lock of a folder, against other processes and other holders in this one. The constructor waits for
// it, and throws std::system_error.
class FolderLock
{
public:
    explicit FolderLock(const std::filesystem::path &folder);
    ~FolderLock();
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    std::intptr_t m_lock; // the system's descriptor or handle
};

// Renames the file to its name with the suffix and "-1", "-2" and so on, the first that is free. Returns the
// new path. Throws std::system_error.
std::filesystem::path SetFileAside(const std::filesystem::path &file, const std::string &suffix);

// Makes the folder and the missing ones above it, readable by their owner alone. Throws std::system_error.
void MakePrivateFolder(const std::filesystem::path &folder);

// Who besides the user may change the file or folder, as words that follow its name; empty if nobody, or if there
// is none. The system's administrator counts as the user. Always empty on Windows.
std::string ForeignAccess(const std::filesystem::path &path);
