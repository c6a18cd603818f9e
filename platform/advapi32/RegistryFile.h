// The file of the registry store: reading, locking, replacing. Every operation returns a
// Win32 error code.
#pragma once

#include <windows.h>

#include <string>

#include <sys/types.h>
#include <time.h>

// Differs between two contents of the file, nearly always: it is compared in place of reading the file.
struct FileStamp
{
    bool exists = false;
    dev_t device = 0;
    ino_t node = 0;
    off_t size = 0;
    timespec modified{};

    bool operator==(const FileStamp &other) const;
};

FileStamp StampOf(const std::string &path);

// ERROR_SUCCESS with no bytes if there is no such file.
LSTATUS ReadWholeFile(const std::string &path, std::string &bytes, FileStamp &stamp);

// Puts a new file in the place of the old one, mode 0600; a crash leaves one of them whole. A path
// that is a symbolic link stays one. The caller holds the lock.
LSTATUS ReplaceFile(const std::string &path, const std::string &bytes, FileStamp &stamp);

// Moves the file to PATH.damaged-N, the first N that is free.
LSTATUS SetFileAside(const std::string &path, std::string &keptAs);

// The lock between processes: a file beside the one that it guards.
class FileLock
{
public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    // Waits for other processes. Makes the folder if it is missing.
    LSTATUS Acquire(const std::string &path);
    void Release();
    bool IsHeld() const { return m_file >= 0; }

private:
    int m_file = -1;
};
