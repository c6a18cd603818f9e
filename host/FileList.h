// Lists of files between commands: what publish --porcelain writes, and publish --files-from reads.
#pragma once

#include "host/RunRecord.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// The word for an end in the first field of a line.
const char *PorcelainWord(ItemEnd end);

// Of a picture that a run leaves out, and of one that a dry run would send.
inline constexpr char PorcelainLeftOut[] = "left-out";
inline constexpr char PorcelainToSend[] = "to-send";

// A line: outcome, file, the service's id or ticket, and the reason, separated by tabs. The file's name stands as it
// is; the others have no tabs. end closes it: a line feed or a zero.
std::string PorcelainLine(const char *outcome, const std::filesystem::path &file, std::string_view id,
                          std::string_view reason, char end);

// The files of a list whose lines are closed by end: each a file's name, or a line of PorcelainLine, of which those
// of pictures that are published, handed in or left out are passed over.
std::vector<std::filesystem::path> FilesOfList(std::string_view list, char end);
