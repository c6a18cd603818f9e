// Reads a picture file's dimensions, and its metadata by groups, as readable texts.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace loopback
{

struct MetadataGroup
{
    // "EXIF", "GPS", "IPTC", "XMP" or "Comment"
    std::string name;
    // Key and value in the file's order, as bytes: a value need not be UTF-8.
    std::vector<std::pair<std::string, std::string>> entries;
};

struct PhotoFacts
{
    // Pixels as stored, before the orientation is applied; 0 if unknown.
    int width = 0;
    int height = 0;
    // Bytes of the colour profile; 0 if there is none.
    std::size_t profileSize = 0;
    // Only the groups that have entries.
    std::vector<MetadataGroup> groups;
};

// Returns empty facts for a file that can't be read.
PhotoFacts ReadPhotoFacts(const std::filesystem::path &file);

} // namespace loopback
