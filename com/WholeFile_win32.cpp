#include "com/WholeFile.h"

#include "com/HandleOwner.h"

#include <windows.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace
{
// The system's count has 32 bits.
constexpr size_t LargestPart = size_t{1} << 30;

[[noreturn]] void ThrowLastError(const char *deed)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), deed);
}

FileOwner Open(const fs::path &path, DWORD access, DWORD disposition)
{
    return FileOwner(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                 nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileOwner OpenOrThrow(const fs::path &path, DWORD access, DWORD disposition, const char *deed)
{
    FileOwner opened = Open(path, access, disposition);
    if (!opened)
    {
        ThrowLastError(deed);
    }
    return opened;
}

bool IsMissing(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void WriteAll(HANDLE file, std::string_view content)
{
    while (!content.empty())
    {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(std::min(content.size(), LargestPart));
        if (!WriteFile(file, content.data(), size, &written, nullptr))
        {
            ThrowLastError("writing");
        }
        content.remove_prefix(written);
    }
    // The file gets its name only when its content is on the disk.
    if (!FlushFileBuffers(file))
    {
        ThrowLastError("writing");
    }
}
} // namespace

fs::path WithoutLinks(const fs::path &file)
{
    return file;
}

std::error_code TryToRead(const fs::path &file)
{
    return Open(file, GENERIC_READ, OPEN_EXISTING)
               ? std::error_code()
               : std::error_code(static_cast<int>(GetLastError()), std::system_category());
}

std::optional<std::string> ReadWholeFile(const fs::path &file, size_t limit)
{
    const FileOwner opened = Open(file, GENERIC_READ, OPEN_EXISTING);
    if (!opened)
    {
        if (IsMissing(GetLastError()))
        {
            return std::nullopt;
        }
        ThrowLastError("opening");
    }
    std::string content;
    char part[4096];
    for (;;)
    {
        DWORD count = 0;
        if (!ReadFile(opened.Get(), part, sizeof(part), &count, nullptr))
        {
            ThrowLastError("reading");
        }
        if (count == 0)
        {
            return content;
        }
        content.append(part, count);
        if (content.size() > limit)
        {
            throw std::system_error(std::make_error_code(std::errc::file_too_large), "reading");
        }
    }
}

// A file inherits who may read it from its folder; the profile's lets in its user alone.
FileReplacement::FileReplacement(const fs::path &file, std::string_view content)
    : m_file(file), m_pending(m_file.native() + L".new")
{
    // A leftover could be readable by others, or a link.
    DeleteFileW(m_pending.c_str());
    FileOwner opened = OpenOrThrow(m_pending, GENERIC_WRITE, CREATE_NEW, "creating");
    try
    {
        WriteAll(opened.Get(), content);
    }
    catch (...)
    {
        opened.Reset();
        DeleteFileW(m_pending.c_str());
        throw;
    }
}

FileReplacement::~FileReplacement()
{
    if (!m_pending.empty())
    {
        DeleteFileW(m_pending.c_str());
    }
}

void FileReplacement::Commit()
{
    if (!MoveFileExW(m_pending.c_str(), m_file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        ThrowLastError("replacing");
    }
    m_pending.clear();
}

FileLock::FileLock(const fs::path &file)
{
    FileOwner opened = OpenOrThrow(file, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, "locking");
    // The lock ends with its handle.
    OVERLAPPED start = {};
    if (!LockFileEx(opened.Get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &start))
    {
        ThrowLastError("locking");
    }
    m_lock = reinterpret_cast<std::intptr_t>(opened.Detach());
}

FileLock::~FileLock()
{
    const FileOwner opened(reinterpret_cast<HANDLE>(m_lock));
    OVERLAPPED start = {};
    // Unlock explicitly: Windows may release a closed handle's lock late.
    UnlockFileEx(opened.Get(), 0, 1, 0, &start);
}

fs::path SetFileAside(const fs::path &file, const std::string &suffix)
{
    for (int number = 1;; ++number)
    {
        fs::path aside = file;
        aside += suffix + "-" + std::to_string(number);
        if (MoveFileExW(file.c_str(), aside.c_str(), MOVEFILE_WRITE_THROUGH))
        {
            return aside;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS)
        {
            ThrowLastError("renaming");
        }
    }
}

void MakePrivateFolder(const fs::path &folder)
{
    fs::create_directories(folder);
}

std::string ForeignAccess(const fs::path &)
{
    return {};
}
