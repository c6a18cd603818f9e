// Files as they lie on disk: size and time, by which a file is known again, and SHA-256, by which files with the same
// bytes are known: 64 lower-case hexadecimal digits.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

struct FileState
{
    std::filesystem::path path; // absolute
    std::uintmax_t size = 0;    // bytes
    std::int64_t time = 0;      // of the last change, in nanoseconds since 1970
    std::string sha256;         // 64 hexadecimal digits, empty if it wasn't read

    bool operator==(const FileState &) const = default;
};

// Without its digest; nothing if there is no such file.
std::optional<FileState> LookAtFile(const std::filesystem::path &file);

// Empty if the file can't be read to its end.
std::string DigestOfFile(const std::filesystem::path &file);

std::string DigestOfText(std::string_view text);
