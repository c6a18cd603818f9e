#include "host/FileDigest.h"

#include <fstream>
#include <utility>
#include <vector>

namespace
{
// Two lower-case hexadecimal digits for each byte.
std::string HexDigits(const Sha256Digest &digest)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : digest)
    {
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}
} // namespace

std::string DigestOfFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        return std::string();
    }
    std::vector<char> buffer(size_t{256} << 10);
    const Sha256Digest digest = Sha256OfChunks([&] {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        return std::string_view(buffer.data(), static_cast<size_t>(stream.gcount()));
    });
    return stream.eof() ? HexDigits(digest) : std::string();
}

std::string DigestOfText(std::string_view text)
{
    return HexDigits(Sha256OfChunks([&] { return std::exchange(text, std::string_view()); }));
}
