// Whether the picture in a JPEG file is whole, for decoders pass over damage and invent what is missing.
#pragma once

#include "jpegdata/PictureSurvey.h"

#include <filesystem>

// State Unknown for a file that is no JPEG, or can't be read. Any thread.
PictureSurvey SurveyFile(const std::filesystem::path &file, const std::atomic<bool> *stop);

// Whether it is a JPEG file whose picture is whole and that lacks the marker of its end. Costs the reading of the
// whole file where the marker isn't the file's last bytes.
bool LacksItsEndAlone(const std::filesystem::path &file);
