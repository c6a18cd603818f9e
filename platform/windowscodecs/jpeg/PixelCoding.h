// Pixels to compressed data, and a look at compressed data. The only place that knows the JPEG library.
#pragma once

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <objidl.h>

#include <memory>
#include <vector>

struct OutputSegment
{
    BYTE Marker;
    Bytes Contents; // at most MaxSegmentBytes
};

// Looks at a picture by decoding it. Failures are thrown: the stream's own code,
// WINCODEC_ERR_BADIMAGE for damaged or missing data, WINCODEC_ERR_IMAGESIZEOUTOFRANGE for a picture
// that would take more memory than a decoder may have.
class TrialDecoder
{
public:
    // Reads the header from where the picture begins in the stream.
    TrialDecoder(ComPtr<IStream> stream, ULONGLONG base);
    ~TrialDecoder();

    // Decodes the whole picture at an eighth of its size and throws the result away, to learn whether the
    // compressed data is whole and nothing else lies in it. At most once.
    void DecodeAll();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

struct EncodingParameters
{
    UINT Width;
    UINT Height;
    int Quality;      // 1 to 100
    BYTE Subsampling; // a WICJpegYCrCbSubsamplingOption
    std::vector<OutputSegment> Head;
};

// Writes a baseline file from rows of 24 bits a pixel, blue first. Head goes right behind the start of image.
class RowEncoder
{
public:
    RowEncoder(ComPtr<IStream> stream, const EncodingParameters &parameters);
    ~RowEncoder();

    void WriteRow(const BYTE *row);

    // To be called when all rows are written.
    void Finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};
