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
} // namespace

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
