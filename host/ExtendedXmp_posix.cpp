#include "host/ExtendedXmp_posix.h"

#include <fstream>
#include <map>
#include <optional>

using namespace std::string_literals;

namespace
{
// More than any program writes; a crafted file could go on for gigabytes.
constexpr size_t MostBytes = 16 << 20;

constexpr int StartOfImage = 0xFFD8;
constexpr int StartOfScan = 0xFFDA;
constexpr int App1 = 0xFFE1;

// Big-endian; -1 behind the end.
int Read16(std::istream &file)
{
    const int high = file.get();
    const int low = file.get();
    return file ? high << 8 | low : -1;
}

unsigned BigEndianAt(const std::string &bytes, size_t at)
{
    unsigned value = 0;
    for (size_t i = at; i < at + 4; ++i)
    {
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return value;
}
} // namespace

std::string ReadExtendedXmp(const std::filesystem::path &jpeg, const std::string &identifier)
{
    const std::string start = "http://ns.adobe.com/xmp/extension/\0"s + identifier;
    const size_t head = start.size() + 8; // length and offset
    std::map<unsigned, std::string> parts;
    std::optional<unsigned> told;
    size_t total = 0;
    std::ifstream file(jpeg, std::ios::binary);
    for (int marker = Read16(file); marker >= StartOfImage && marker != StartOfScan; marker = Read16(file))
    {
        const int length = marker == StartOfImage ? 2 : Read16(file);
        if (length < 2)
        {
            break;
        }
        std::string contents(static_cast<size_t>(length) - 2, '\0');
        file.read(contents.data(), length - 2);
        total += contents.size();
        if (!file || total > MostBytes)
        {
            return std::string();
        }
        if (marker == App1 && contents.size() >= head && contents.starts_with(start))
        {
            const unsigned whole = BigEndianAt(contents, start.size());
            const bool isNew =
                parts.emplace(BigEndianAt(contents, start.size() + 4), contents.substr(head)).second;
            if (!isNew || whole != told.value_or(whole))
            {
                return std::string();
            }
            told = whole;
        }
    }
    std::string packet;
    for (const auto &[offset, part] : parts)
    {
        if (offset != packet.size())
        {
            return std::string();
        }
        packet += part;
    }
    return packet.size() == told ? packet : std::string();
}
