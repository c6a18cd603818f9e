#include "host/PictureExtensions.h"

#include "host/FileNames.h"

#include <algorithm>
#include <array>

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
} // namespace

bool IsPictureExtension(std::string_view extension)
{
    return std::binary_search(Pictures.begin(), Pictures.end(), std::string_view(LowerAscii(extension)));
}

bool IsSidecarExtension(std::string_view extension)
{
    return std::binary_search(Sidecars.begin(), Sidecars.end(), std::string_view(LowerAscii(extension)));
}

std::span<const std::string_view> PictureExtensions()
{
    return Pictures;
}
