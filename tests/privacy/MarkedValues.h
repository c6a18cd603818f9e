// Values for metadata in every place that cameras and programs put it, each of its own, and the search for
// them.
#pragma once

#include <string>
#include <vector>

// The five groups of metadata that a user switches, as bits.
enum Group : unsigned
{
    Copyright = 1,
    Exif = 2,
    Xmp = 4,
    Gps = 8,
    Iptc = 16,
    AllGroups = 31
};

struct MarkedValue
{
    std::string place;
    std::string bytes; // text is ASCII; it may turn up in other encodings
    bool isText;

    // The value may be published when all groups of one of these sets are on; with no set, never.
    std::vector<unsigned> leave;
};

// What is written where. key is Exiv2's, or words for what Exiv2 doesn't write.
struct MarkedPlace
{
    const char *key;
    const char *value;
    std::vector<unsigned> leave;
};

extern const std::vector<MarkedPlace> ExifPlaces;
extern const std::vector<MarkedPlace> IptcPlaces;
extern const std::vector<MarkedPlace> XmpPlaces;

// Of a JPEG: segments that are none of these, or more of them than the usual.
extern const std::vector<MarkedPlace> OtherPlaces;

// Of a PNG: "PNG", the type of the chunk and its keyword.
extern const std::vector<MarkedPlace> PngPlaces;

// Seconds of the latitude 47 degrees 13 minutes: a fraction that no other value has.
constexpr unsigned SecondsNumerator = 987654321;
constexpr unsigned SecondsDenominator = 20000003;

// Everything that is in the places.
const std::vector<MarkedValue> &MarkedValues();

// A number in so many bytes.
std::string NumberBytes(size_t value, int count, bool isBigEndian);

// ASCII as UTF-16.
std::string WideBytes(const std::string &text, bool isBigEndian);

// Where the value, in whatever encoding, is in a file; npos if it isn't there.
size_t FindValue(const std::string &file, const MarkedValue &value);
