// What a picture file tells of itself: its measures, and its metadata in groups, as texts for people.
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

struct PhotoFacts
{
    // Pixels as they are stored, before any turning; 0 if the file doesn't tell.
    int width = 0;
    int height = 0;
    // Bytes; 0 for no profile.
    std::size_t profileSize = 0;
    // Those that hold anything.
    std::vector<MetadataGroup> groups;
};

// A file that can't be read has no facts.
PhotoFacts ReadPhotoFacts(const std::filesystem::path &file);

} // namespace loopback
