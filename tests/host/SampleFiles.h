// Small picture files of many kinds, made by the imaging library when a test needs them.
#pragma once

#include <windows.h>

#include <array>
#include <filesystem>
#include <functional>
#include <string>

struct Rgb
{
    int red;
    int green;
    int blue;

    bool operator==(const Rgb &) const = default;
};

struct PictureOptions
{
    std::string saver;   // options behind the file's name, as "[Q=95]"
    int orientation = 0; // 0 for none
    double dpi = 0;      // 0 for none
    std::string profile; // a built-in profile's name or a file
    std::string
        interpretation; // "cmyk", "rgb16", "b-w" convert; "ink" takes a colour's complement; empty leaves sRGB
    bool alpha = false; // an alpha channel, 0 everywhere
};

// Four quarters: red, green above, blue, white below.
void MakeSample(const std::filesystem::path &file, int width, int height, const PictureOptions &options = {});

// Changes the file by exiftool's arguments, quoted for a shell; throws if that fails.
void Exiftool(const std::string &arguments, const std::filesystem::path &file);

// Six numbers: x and y of red, green and blue.
void SaveRgbProfile(const double (&primaries)[6], double gamma, const std::string &file);

// Profiles that nobody would take for another: of sRGB's primaries with red and green exchanged and with a linear
// scale, of gray, and of ink with cyan and yellow exchanged, which knows the perceptual intent alone.
struct SampleProfiles
{
    explicit SampleProfiles(const std::filesystem::path &folder);

    std::string exchanged;
    std::string linear;
    std::string gray;
    std::string ink;
};
