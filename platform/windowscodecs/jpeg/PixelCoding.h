// Rows of pixels from and to compressed data. The only place that knows the JPEG library.
#pragma once

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <objidl.h>

#include <memory>
#include <vector>

enum class PixelLayout
{
    Gray8,
    Bgr24,
    Cmyk32 // 0 is no ink, as the imaging interfaces have it
};

inline UINT BytesPerPixel(PixelLayout layout) noexcept
{
    return layout == PixelLayout::Gray8 ? 1 : layout == PixelLayout::Bgr24 ? 3 : 4;
}

struct OutputSegment
{
    BYTE Marker;
    Bytes Contents; // at most MaxSegmentBytes
};

// The rows of one picture from top to bottom. Failures are thrown: the stream's own code,
// WINCODEC_ERR_BADIMAGE for damaged or missing data, WINCODEC_ERR_IMAGESIZEOUTOFRANGE for a picture
// that would take more memory than a decoder may have.
class RowDecoder
{
public:
    // Reads the header from where the picture begins in the stream.
    RowDecoder(ComPtr<IStream> stream, ULONGLONG base);
    ~RowDecoder();

    UINT NextRow() const noexcept;
    void SkipTo(UINT row);
    void ReadRow(BYTE *row);

    // Decodes the whole picture at an eighth of its size and throws the result away, to learn whether the
    // compressed data is whole and nothing else lies in it. Nothing else may be called after it.
    void CheckAll();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

struct EncodingParameters
{
    UINT Width;
    UINT Height;
    PixelLayout Layout;
    int Quality;      // 1 to 100
    BYTE Subsampling; // a WICJpegYCrCbSubsamplingOption
    std::vector<OutputSegment> Head;
};

// Writes a baseline file. Head goes right behind the start of image.
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
