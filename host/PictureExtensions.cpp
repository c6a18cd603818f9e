#include "host/PictureExtensions.h"

#include <algorithm>
#include <array>
#include <string>

namespace
{
// Sorted. JPEG, GIF and PNG can be sent as they are on disk; TIFF, WebP, HEIF, the camera makers' raw
// formats and the rest are decoded.
constexpr auto Pictures = std::to_array<std::string_view>({
    "3fr",  "arw", "avif", "bmp",  "cap", "cr2",  "cr3", "crw", "dcr", "dng", "erf", "exif", "fff",  "gif", "heic",
    "heif", "hif", "iiq",  "jfif", "jpe", "jpeg", "jpg", "k25", "kdc", "mef", "mos", "mrw",  "nef",  "nrw", "orf",
    "pef",  "png", "psd",  "raf",  "raw", "rw2",  "rwl", "sr2", "srf", "srw", "tif", "tiff", "webp", "x3f",
});
static_assert(std::is_sorted(Pictures.begin(), Pictures.end()));

constexpr auto Sidecars = std::to_array<std::string_view>({"dop", "pp3", "thm", "xmp"});
static_assert(std::is_sorted(Sidecars.begin(), Sidecars.end()));

std::string Lower(std::string_view extension)
{
    std::string lower(extension);
    for (char &c : lower)
    {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}
} // namespace

bool IsPictureExtension(std::string_view extension)
{
    return std::binary_search(Pictures.begin(), Pictures.end(), std::string_view(Lower(extension)));
}

bool IsSidecarExtension(std::string_view extension)
{
    return std::binary_search(Sidecars.begin(), Sidecars.end(), std::string_view(Lower(extension)));
}

std::span<const std::string_view> PictureExtensions()
{
    return Pictures;
}
