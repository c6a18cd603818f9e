// One scan of a JPEG picture: which blocks its coded data holds, in which order (T.81, A.2).
#pragma once

#include "jpegdata/BlockReading.h"

#include <array>
#include <atomic>
#include <vector>

struct Component
{
    BYTE id = 0;
    UINT horizontal = 1; // blocks in a unit
    UINT vertical = 1;
    UINT quantizer = 0;
    UINT width = 0; // in blocks, without those that only fill a unit up
    UINT height = 0;
    bool isSeen = false;
    std::array<signed char, 64> lowestBit; // of each coefficient as far as it was coded, -1 before
    std::vector<NonZero> blocks;           // once a scan of a progressive picture needs them

    ULONGLONG Blocks() const noexcept { return ULONGLONG{width} * height; }
};

struct ScanPart
{
    Component *component;
    const HuffmanTable *dc;
    const HuffmanTable *ac;
};

struct Scan
{
    std::vector<ScanPart> parts;
    ScanRange range;
    bool isProgressive = false;
    bool isWholePicture = false; // all of it is in this scan
    ULONGLONG units = 0;
    UINT unitsAcross = 0;
    UINT restartInterval = 0; // in units, 0 for none
};

// Raised once stop is true.
struct ScanStopped
{
};

// Reads the blocks of a scan, whose coded data begins here, and moves to the marker behind it. Adds what belongs to
// no block to unread. Throws CodedDataError if the data isn't the picture's, and ScanStopped.
void ReadScan(CodedData &data, const Scan &scan, std::vector<ByteRange> &unread, const std::atomic<bool> *stop);
