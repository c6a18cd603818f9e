#include "host/JpegFile.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>

PictureSurvey SurveyFile(const std::filesystem::path &file, const std::atomic<bool> *stop)
{
    std::ifstream content(file, std::ios::binary);
    const auto read = [&](BYTE *to, size_t size) {
        content.read(reinterpret_cast<char *>(to), static_cast<std::streamsize>(size));
        return static_cast<size_t>(content.gcount());
    };
    return SurveyPicture(read, stop);
}

bool LacksItsEndAlone(const std::filesystem::path &file)
{
    std::ifstream content(file, std::ios::binary);
    std::string last(2, '\0');
    content.seekg(-2, std::ios::end).read(last.data(), 2);
    if (last == "\xFF\xD9")
    {
        return false;
    }
    const PictureSurvey survey = SurveyFile(file, nullptr);
    return survey.state == PictureState::Whole && !survey.hasEnd;
}

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
