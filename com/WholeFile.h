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
    FileReplacement(const std::filesystem::path &file, std::string_view content);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    void Commit();

private:
    std::filesystem::path m_file;
    std::filesystem::path m_pending;
};

// Holds a lock against other processes and other holders in this one. It is a file that is made where it is missing,
// and stays. The constructor waits for the lock, and throws std::system_error.
class FileLock
{
public:
    explicit FileLock(const std::filesystem::path &file);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

private:
    std::intptr_t m_lock; // the system's descriptor or handle
};

// The file that a symbolic link leads to; the path itself if it is none, or leads nowhere, and on Windows.
std::filesystem::path WithoutLinks(const std::filesystem::path &file);

// Renames the file, of a symbolic link the one that it leads to, to its name with the suffix and "-1", "-2" and so
// on, the first that is free. Returns the new path. Throws std::system_error.
std::filesystem::path SetFileAside(const std::filesystem::path &file, const std::string &suffix);

// Makes the folder and the missing ones above it, readable by their owner alone. Throws std::system_error.
void MakePrivateFolder(const std::filesystem::path &folder);

// Where programs keep the files of one user: $XDG_DATA_HOME, else ~/.local/share. Empty if there is no home. Linux
// alone.
std::filesystem::path UserDataFolder();

// Who besides the user may change the file or folder, as words that follow its name; empty if nobody, or if there
// is none. The system's administrator counts as the user. Always empty on Windows.
std::string ForeignAccess(const std::filesystem::path &path);
