#include "host/FileDigest.h"

#include <fstream>
#include <utility>
#include <vector>

std::string DigestOfFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        return std::string();
    }
    std::vector<char> buffer(size_t{256} << 10);
    const std::string digest = Sha256OfChunks([&] {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        return std::string_view(buffer.data(), static_cast<size_t>(stream.gcount()));
    });
    return stream.eof() ? digest : std::string();
}

std::string DigestOfText(std::string_view text)
{
    return Sha256OfChunks([&] { return std::exchange(text, std::string_view()); });
}
