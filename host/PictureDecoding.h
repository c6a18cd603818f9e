// Decoding of picture files: turned upright, in sRGB, on white, and no larger than wanted.
//
// A picture that its EXIF block alone says to be in Adobe RGB counts as one with that profile.
// An animation or a file of many pages gives its first picture. Alpha is laid on white. Colours are
// converted from the profile in the file, CMYK included; a damaged profile counts as none. Sixteen bits
// become eight. A JPEG whose coded data is damaged is refused; one that merely lacks its end marker isn't.
// Pictures of more than MaxPicturePixels are refused before a pixel is decoded.
#pragma once

#include <windows.h>

#include <wincodec.h>

#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

// 3 bytes each make 1.5 GB: more than any camera makes, less than a crafted header can claim.
constexpr UINT64 MaxPicturePixels = 500'000'000;

struct DecodedPicture
{
    UINT width = 0;
    UINT height = 0;
    double dpiX = 0; // of the file; if it has none 0, or the decoder's default
    double dpiY = 0;
    std::vector<BYTE> pixels; // blue, green, red; rows without padding, from the top

    size_t RowBytes() const noexcept { return size_t{width} * 3; }
};

// Why a file could not be decoded. The words are for the log: UTF-8, without the file's name.
class DecodingError : public std::runtime_error
{
public:
    DecodingError(HRESULT code, const std::string &words) : std::runtime_error(words), m_code(code) {}

    // WINCODEC_ERR_UNKNOWNIMAGEFORMAT, WINCODEC_ERR_BADIMAGE, WINCODEC_ERR_IMAGESIZEOUTOFRANGE for too
    // many pixels, E_OUTOFMEMORY, E_ABORT after stop, or the code of the file system's refusal.
    HRESULT Code() const noexcept { return m_code; }

private:
    HRESULT m_code;
};

// Throws for more than MaxPicturePixels.
inline void RequireDecodableSize(UINT64 width, UINT64 height)
{
    if (width * height > MaxPicturePixels)
    {
        throw DecodingError(WINCODEC_ERR_IMAGESIZEOUTOFRANGE,
                            "says that it is " + std::to_string(width) + " by " + std::to_string(height) +
                                " pixels large; at most " + std::to_string(MaxPicturePixels / 1'000'000) +
                                " megapixels can be decoded");
    }
}

// longEdge in pixels, 0 for the full size. Any thread, also several at a time. stop may be null; once it
// is true, the decoding ends soon. A picture that can be stopped is one of several at a time, and is made on a single
// core where the library allows it. Throws DecodingError and std::bad_alloc.
DecodedPicture DecodePicture(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop);
