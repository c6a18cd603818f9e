// The metadata that lies in a picture file, in groups, as texts for people.
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
    // Key and value, in UTF-8, in the order of the file.
    std::vector<std::pair<std::string, std::string>> entries;
};

// The groups that hold anything. A file that can't be read has none.
std::vector<MetadataGroup> ReadPhotoMetadata(const std::filesystem::path &file);

}
