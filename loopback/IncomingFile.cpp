#include "loopback/IncomingFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace loopback
{

namespace
{

constexpr std::size_t FirstBytesKept = 16;

}

IncomingFile::IncomingFile(const std::filesystem::path &folder)
{
    std::string name = (folder / "upload-XXXXXX").string();
    m_file = mkostemp(name.data(), O_CLOEXEC);
    if (m_file < 0)
    {
        throw std::system_error(errno, std::generic_category(), folder.string());
    }
    m_path = name;
}

IncomingFile::~IncomingFile()
{
    close(m_file);
    std::error_code ignored;
    if (!m_path.empty())
    {
        std::filesystem::remove(m_path, ignored);
    }
}

void IncomingFile::Add(std::string_view bytes)
{
    m_hash.Add(bytes);
    m_size += static_cast<std::int64_t>(bytes.size());
    if (m_firstBytes.size() < FirstBytesKept)
    {
        m_firstBytes.append(bytes.substr(0, FirstBytesKept - m_firstBytes.size()));
    }
    while (!bytes.empty())
    {
        const ssize_t written = write(m_file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
        {
            throw std::system_error(errno, std::generic_category(), "the store");
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

void IncomingFile::Keep(const std::filesystem::path &destination)
{
    std::filesystem::rename(m_path, destination);
    m_path.clear();
}

} // namespace loopback
