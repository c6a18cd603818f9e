#include "tests/privacy/MarkedPng.h"

#include "tests/privacy/MarkedValues.h"

#include <zlib.h>

using namespace std::string_literals;

namespace
{
constexpr size_t SignatureBytes = 8;
constexpr size_t HeaderChunkBytes = 25;

std::string BigEndian(size_t value)
{
    return NumberBytes(value, 4, true);
}

const Bytef *BytesOf(const std::string &text)
{
    return reinterpret_cast<const Bytef *>(text.data());
}

std::string Chunk(const std::string &type, const std::string &contents)
{
    const std::string checked = type + contents;
    return BigEndian(contents.size()) + checked +
           BigEndian(crc32(0, BytesOf(checked), static_cast<uInt>(checked.size())));
}

std::string Deflated(const std::string &bytes)
{
    uLongf size = compressBound(bytes.size());
    std::string result(size, '\0');
    compress(reinterpret_cast<Bytef *>(result.data()), &size, BytesOf(bytes), bytes.size());
    result.resize(size);
    return result;
}
} // namespace

std::string MakePlainPng()
{
    // Rows of RGB, each behind the number of its filter.
    std::string pixels;
    for (int y = 0; y < 12; ++y)
    {
        pixels += '\0';
        for (int x = 0; x < 16; ++x)
        {
            pixels += {static_cast<char>(x * 15), static_cast<char>(y * 20), '\x40'};
        }
    }
    return "\x89PNG\r\n\x1A\n"s + Chunk("IHDR", BigEndian(16) + BigEndian(12) + "\x08\x02\0\0\0"s) +
           Chunk("IDAT", Deflated(pixels)) + Chunk("IEND", "");
}

void AddPngChunks(std::string &file, const std::string &exif)
{
    std::string chunks = Chunk("eXIf", exif);
    for (const MarkedPlace &place : PngPlaces)
    {
        // "PNG tEXt Author" is the chunk's type and its keyword.
        const std::string type = std::string(place.key).substr(4, 4);
        const std::string keyword = std::string(place.key).substr(9);
        chunks += Chunk(type, keyword + (type == "iTXt" ? "\0\0\0en\0\0"s : "\0"s) + place.value);
    }
    file.insert(SignatureBytes + HeaderChunkBytes, chunks);
    file += "behind the end: "s + PngPlaces.front().value;
}
