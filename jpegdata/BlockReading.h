// Reads single blocks for their bits alone: where they end, and whether an encoder can have written them.
// Coefficients are told apart only where the bits depend on them.
#pragma once

#include "jpegdata/CodedData.h"
#include "jpegdata/HuffmanTable.h"

#include <stdexcept>

// Why coded data can't be a picture's. In words for a sentence that says that it is damaged.
class CodedDataError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Which coefficients of a block aren't zero, by their number in zigzag order.
using NonZero = UINT64;

// The coefficients that a progressive scan codes (T.81, B.2.3).
struct ScanRange
{
    int first = 0;
    int last = 63;
    int bitBefore = 0; // the lowest bit that earlier scans coded, 0 if there was none
    int bit = 0;
};

// All throw CodedDataError.
void ReadSequentialBlock(CodedData &data, const HuffmanTable &dc, const HuffmanTable &ac);
void ReadDcBlock(CodedData &data, const HuffmanTable &dc);
void ReadDcBit(CodedData &data);

// run: blocks from here on of which the data said that they have no further coefficients in this scan.
void ReadAcBlock(CodedData &data, const HuffmanTable &ac, const ScanRange &range, UINT &run, NonZero &block);
void RefineAcBlock(CodedData &data, const HuffmanTable &ac, const ScanRange &range, UINT &run, NonZero &block);
