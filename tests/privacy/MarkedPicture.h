// A JPEG with metadata in every place that cameras and programs put it, each with a value of its own that
// is nowhere else.
#pragma once

#include <string>
#include <vector>

// The five groups of metadata that a person switches, as bits.
enum Group : unsigned
{
    Copyright = 1,
    Exif = 2,
    Xmp = 4,
    Gps = 8,
    Iptc = 16,
    AllGroups = 31
};

enum class Blocks
{
    Everything,
    ExifAlone   // as a camera writes it, in its own byte order
};

struct MarkedValue
{
    std::string place;
    std::string bytes;          // text is ASCII; it may turn up in other encodings
    bool isText;

    // The value may go up when all groups of one of these sets are on. With none it may never go up.
    std::vector<unsigned> leave;
};

// All values of a picture with everything.
const std::vector<MarkedValue> &MarkedValues();

std::string MakeMarkedPicture(Blocks blocks);

// Where the value, in whatever encoding, is in a file; npos if it isn't there.
size_t FindValue(const std::string &file, const MarkedValue &value);
