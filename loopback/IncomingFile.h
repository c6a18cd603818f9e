// A picture on its way in: written to a file of its own as it arrives, hashed on the way. Gone with
// the object unless it was kept.
#pragma once

#include "loopback/Digest.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace loopback
{

class IncomingFile
{
public:
    // Throws std::runtime_error when the file can't be made.
    explicit IncomingFile(const std::filesystem::path &folder);
    ~IncomingFile();
    IncomingFile(const IncomingFile &) = delete;
    IncomingFile &operator=(const IncomingFile &) = delete;

    // Throws std::runtime_error on a full disk and the like.
    void Add(std::string_view bytes);

    std::int64_t Size() const { return m_size; }
    // As many as the recognition of a file's kind needs.
    const std::string &FirstBytes() const { return m_firstBytes; }
    std::string Sha256() { return m_hash.Finish(); }

    // Moves the file to its place; it stays.
    void Keep(const std::filesystem::path &destination);

private:
    std::filesystem::path m_path;
    int m_file = -1;
    std::int64_t m_size = 0;
    std::string m_firstBytes;
    loopback::Sha256 m_hash;
};

} // namespace loopback
