#include "platform/windowscodecs/ContainerSignature.h"

#include <wincodec.h>

#include <string_view>

using namespace std::string_view_literals;

namespace
{
struct Signature
{
    std::string_view start;
    const GUID *format;
    // What must follow, and its offset in the file.
    size_t offset = 0;
    std::string_view further = {};
};

// A DNG file begins like any TIFF file and counts as one.
const Signature Signatures[] = {
    {"\xFF\xD8\xFF"sv, &GUID_ContainerFormatJpeg},
    {"\x89PNG\r\n\x1A\n"sv, &GUID_ContainerFormatPng},
    {"GIF87a"sv, &GUID_ContainerFormatGif},
    {"GIF89a"sv, &GUID_ContainerFormatGif},
    {"II\x2A\0"sv, &GUID_ContainerFormatTiff},
    {"MM\0\x2A"sv, &GUID_ContainerFormatTiff},
    {"BM"sv, &GUID_ContainerFormatBmp},
    {"RIFF"sv, &GUID_ContainerFormatWebp, 8, "WEBP"sv},
};
} // namespace

const GUID *RecogniseContainer(std::span<const BYTE> head)
{
    const std::string_view bytes(reinterpret_cast<const char *>(head.data()), head.size());
    for (const Signature &signature : Signatures)
    {
        if (bytes.starts_with(signature.start) && bytes.size() >= signature.offset &&
            bytes.substr(signature.offset).starts_with(signature.further))
        {
            return signature.format;
        }
    }
    return nullptr;
}
