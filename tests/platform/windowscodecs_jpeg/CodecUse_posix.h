// The calls of a caller through decoder and encoder, from bytes to bytes.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"
#include "tests/platform/windowscodecs_jpeg/SamplePictures_posix.h"

#include <windows.h>
#include <wincodec.h>
#include <wincodecsdk.h>

#include <functional>
#include <map>
#include <string>

// A stream over the bytes that stands at their start.
ComPtr<IStream> StreamOf(const Octets &bytes);
Octets BytesOf(IStream *stream);

HRESULT OpenFrame(const Octets &file, ComPtr<IWICBitmapFrameDecode> &frame);

struct Rewriting
{
    bool CopyBlocks = true;
    bool CopyProfile = true;
    double Resolution = 300;
    std::function<void(IWICMetadataQueryWriter *)> Edit;
};

// Writes the file anew with its pixels intact. The first failure ends it; what is written so far is
// in result.
HRESULT Rewrite(const Octets &file, const Rewriting &rewriting, Octets &result);

// Whether the bytes are anywhere in the file.
bool Holds(const Octets &file, const std::string &bytes);

// What exiftool reads, by "Group:Tag" with values as numbers; its own groups are left out but for
// "Warning" and "Error". All files in one call, for the program takes long to start.
using TagValues = std::map<std::string, std::string>;
std::vector<TagValues> ReadWithExiftool(const std::vector<Octets> &files);
TagValues ReadWithExiftool(const Octets &file);
