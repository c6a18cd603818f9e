// Extended XMP of JPEG files: what doesn't fit into the main packet's segment lies in further ones, cut into parts,
// and the metadata library leaves it alone (the XMP standard on storage in files, 1.1.3.1).
#pragma once

#include <filesystem>
#include <string>

// The packet of which the main one tells the identifier, 32 letters. Empty if a part is missing, is there twice or
// has another length than it tells, or if the file can't be read.
std::string ReadExtendedXmp(const std::filesystem::path &jpeg, const std::string &identifier);
