#include "fuzz/Mutation.h"

#include <algorithm>

namespace
{
constexpr size_t MaxBytes = 1 << 18;
constexpr size_t MaxPiece = 512;
constexpr uint32_t Limits[] = {0,      1,      2,      4,       0x7F,       0x80,       0xFF,       0x100,
                               0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8};
} // namespace

std::string Mutation::Next()
{
    std::string bytes = m_samples[Below(m_samples.size())];
    for (size_t changes = 1 + Below(8); changes > 0; --changes)
    {
        Change(bytes);
    }
    bytes.resize(std::min(bytes.size(), MaxBytes));
    return bytes;
}

void Mutation::Change(std::string &bytes)
{
    const size_t at = Below(bytes.size() + 1);
    const size_t length = std::min(bytes.size() - at, 1 + Below(MaxPiece));
    switch (Below(9))
    {
    case 0:
        if (at < bytes.size())
        {
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << Below(8)));
        }
        break;
    case 1:
        if (at < bytes.size())
        {
            bytes[at] = static_cast<char>(Below(256));
        }
        break;
    case 2:
    case 3:
        WriteNumber(bytes);
        break;
    case 4:
        bytes.erase(at, 1 + Below(length));
        break;
    case 5:
        bytes.insert(at, std::string(bytes, Below(bytes.size() + 1), length));
        break;
    case 6:
    {
        const std::string &other = m_samples[Below(m_samples.size())];
        bytes.insert(at, other, Below(other.size() + 1), 1 + Below(MaxPiece));
        break;
    }
    case 7:
        bytes.insert(at, 1 + Below(40), static_cast<char>(Below(256)));
        break;
    default:
        // Seldom, since nothing can be spoiled after an early end.
        if (Below(4) == 0)
        {
            bytes.resize(at);
        }
    }
}

void Mutation::WriteNumber(std::string &bytes)
{
    const size_t width = size_t{1} << Below(3);
    if (bytes.size() < width)
    {
        return;
    }
    const size_t at = Below(bytes.size() - width + 1);
    const uint32_t value = Limits[Below(std::size(Limits))];
    const bool isBigEndian = Below(2) == 0;
    for (size_t i = 0; i < width; ++i)
    {
        const size_t shift = 8 * (isBigEndian ? width - 1 - i : i);
        bytes[at + i] = static_cast<char>(value >> shift & 0xFF);
    }
}
