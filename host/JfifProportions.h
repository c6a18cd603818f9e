// Proportions of a JPEG picture's pixels: JFIF files may tell these instead of a resolution (ITU-T T.871, 10.1).
#pragma once

#include <filesystem>
#include <optional>

struct DotsPerInch
{
    double x;
    double y;
};

// The resolution that stands for the file's proportions, 96 on the axis with fewer dots; nothing if the file tells
// none, or square pixels. No picture is resampled for it, here as where the pixels stay intact: the new file tells the
// proportions as its source did, and viewers make of it what they made of the source.
std::optional<DotsPerInch> JfifProportions(const std::filesystem::path &file);
