#include "loopback/FileKind.h"

#include <array>

namespace loopback
{

namespace
{

using namespace std::string_view_literals;

struct Signature
{
    std::size_t offset;
    std::string_view bytes;
    FileKind kind;
};

} // namespace

const FileKind *RecogniseFile(std::string_view firstBytes)
{
    static const std::array Signatures = {
        Signature{0, "\xFF\xD8\xFF"sv, {"image/jpeg", "jpg"}},
        Signature{0, "\x89PNG\r\n\x1A\n"sv, {"image/png", "png"}},
        Signature{0, "GIF87a"sv, {"image/gif", "gif"}},
        Signature{0, "GIF89a"sv, {"image/gif", "gif"}},
        Signature{0, "II*\0"sv, {"image/tiff", "tif"}},
        Signature{0, "MM\0*"sv, {"image/tiff", "tif"}},
        Signature{4, "ftypqt"sv, {"video/quicktime", "mov", true}},
        Signature{4, "ftypisom"sv, {"video/mp4", "mp4", true}},
        Signature{4, "ftypmp4"sv, {"video/mp4", "mp4", true}},
        Signature{8, "AVI LIST"sv, {"video/x-msvideo", "avi", true}},
    };
    for (const auto &signature : Signatures)
    {
        if (firstBytes.size() >= signature.offset &&
            firstBytes.substr(signature.offset).starts_with(signature.bytes))
        {
            return &signature.kind;
        }
    }
    return nullptr;
}

} // namespace loopback
