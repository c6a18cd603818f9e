// A picture that is being uploaded: writes it to a file of its own as it arrives, and hashes it. The
// destructor deletes the file unless Keep was called.
#pragma once

#include "com/Hash.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace loopback
{

class IncomingFile
{
public:
    // Throws std::runtime_error if the file can't be created.
    explicit IncomingFile(const std::filesystem::path &folder);
    ~IncomingFile();
    IncomingFile(const IncomingFile &) = delete;
    IncomingFile &operator=(const IncomingFile &) = delete;

    // Throws std::runtime_error if the file can't be written.
    void Add(std::string_view bytes);

    std::int64_t Size() const { return m_size; }
    // The first few, enough to recognise a format.
    const std::string &FirstBytes() const { return m_firstBytes; }
    std::string Sha256() { return m_hash.Finish(); }

    // Moves the file to its final place.
    void Keep(const std::filesystem::path &destination);

private:
    std::filesystem::path m_path;
    int m_file = -1;
    std::int64_t m_size = 0;
    std::string m_firstBytes;
    ::Sha256 m_hash;
};

} // namespace loopback
