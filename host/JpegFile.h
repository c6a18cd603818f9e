// What a JPEG file's bytes tell and the decoders don't: whether its picture is whole, and the proportions of its
// pixels.
#pragma once

#include "jpegdata/PictureSurvey.h"

#include <filesystem>
#include <optional>

// Decoders pass over damage and invent what is missing. State Unknown for a file that is no JPEG, or can't be read.
// Any thread.
PictureSurvey SurveyFile(const std::filesystem::path &file, const std::atomic<bool> *stop);

// Whether it is a JPEG file whose picture is whole and that lacks the marker of its end. Costs the reading of the
// whole file where the marker isn't the file's last bytes.
bool LacksItsEndAlone(const std::filesystem::path &file);

struct DotsPerInch
{
    double x;
    double y;
};

// JFIF files may tell proportions instead of a resolution (ITU-T T.871, 10.1). The resolution that stands for them,
// 96 on the axis with fewer dots; nothing if the file tells none, or square pixels. No picture is resampled for it,
// here as where the pixels stay intact: the new file tells the proportions as its source did, and viewers make of it
// what they made of the source.
std::optional<DotsPerInch> JfifProportions(const std::filesystem::path &file);
