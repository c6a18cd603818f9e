#include "host/JfifProportions.h"

#include <algorithm>
#include <cstring>
#include <fstream>

std::optional<DotsPerInch> JfifProportions(const std::filesystem::path &file)
{
    // Start of image, marker and length of the segment, "JFIF", version, unit, and 16 bits for each axis.
    unsigned char head[18] = {};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char *>(head), sizeof(head));
    constexpr unsigned char noUnit = 0;
    const unsigned x = head[14] << 8 | head[15];
    const unsigned y = head[16] << 8 | head[17];
    if (std::memcmp(head, "\xFF\xD8\xFF\xE0", 4) != 0 || std::memcmp(head + 6, "JFIF", 5) != 0 ||
        head[13] != noUnit || x == y || x == 0 || y == 0)
    {
        return std::nullopt;
    }
    const double unit = 96.0 / std::min(x, y);
    return DotsPerInch{x * unit, y * unit};
}
