#include "host/PictureCheck.h"

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
