// JPEG files for tests, made and decoded by the JPEG library without this project's code in between.
#pragma once

#include <string>
#include <vector>

using Octets = std::vector<unsigned char>;

struct Marker
{
    int Code; // 0xE1 for APP1
    std::string Contents;
};

struct SampleOptions
{
    int Width = 61;
    int Height = 43;
    int Components = 3;         // 1 gray, 3 colour, 4 ink
    bool StoredAsRgb = false;   // 3 components: RGB with Adobe's marker instead of YCbCr
    bool StoredAsYcck = false;  // 4 components
    int HorizontalSampling = 2; // of the first component
    int VerticalSampling = 2;
    bool Progressive = false;
    bool Arithmetic = false;
    int RestartInterval = 0;   // in MCUs
    bool AdobeMarker = true;   // where the library would write one
    bool SeveralScans = false; // sequential, a scan for each component
    int Quality = 88;
    std::vector<Marker> Markers;
};

Octets MakeJpeg(const SampleOptions &options);

// The decoded samples in the file's own colour space, with size and colour space in front; empty if
// the library finds fault with the file, even one it only warns of.
Octets DecodeJpeg(const Octets &file);
