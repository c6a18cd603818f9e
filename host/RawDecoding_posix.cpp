#include "host/PixelDecoding_posix.h"

#include "host/FileNames.h"

#include <wincodec.h>

// The library declares integers of these names that differ from Windows'.
#define INT64 LibRawInt64
#define UINT64 LibRawUint64
#include <libraw/libraw.h>
#undef INT64
#undef UINT64

#include <algorithm>
#include <array>
#include <memory>

namespace
{
constexpr auto RawExtensions = std::to_array<std::string_view>({
    "3fr", "arw", "cap", "cr2", "cr3", "crw", "dcr", "dng", "erf", "fff", "iiq", "k25", "kdc", "mef",
    "mos", "mrw", "nef", "nrw", "orf", "pef", "raf", "raw", "rw2", "rwl", "sr2", "srf", "srw", "x3f",
});
static_assert(std::is_sorted(RawExtensions.begin(), RawExtensions.end()));

HRESULT CodeOf(int result)
{
    switch (result)
    {
    case LIBRAW_FILE_UNSUPPORTED:
    case LIBRAW_NOT_IMPLEMENTED:
        return WINCODEC_ERR_UNKNOWNIMAGEFORMAT;
    case LIBRAW_UNSUFFICIENT_MEMORY:
        return E_OUTOFMEMORY;
    case LIBRAW_CANCELLED_BY_CALLBACK:
        return E_ABORT;
    case LIBRAW_TOO_BIG:
        return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    default:
        return WINCODEC_ERR_BADIMAGE;
    }
}

void Check(int result)
{
    if (result == LIBRAW_SUCCESS)
    {
        return;
    }
    if (CodeOf(result) == WINCODEC_ERR_UNKNOWNIMAGEFORMAT)
    {
        throw DecodingError(CodeOf(result), "is no camera raw file that can be developed here");
    }
    throw DecodingError(CodeOf(result), std::string("can't be developed: ") + libraw_strerror(result));
}

int StopAsked(void *stop, enum LibRaw_progress, int, int)
{
    return *static_cast<const std::atomic<bool> *>(stop) ? 1 : 0;
}

// The library reports damage that it meets while reading only through this callback.
void NoteDamage(void *damaged, const char *, int)
{
    *static_cast<bool *>(damaged) = true;
}
} // namespace

bool IsRawExtension(std::string_view extension)
{
    return std::binary_search(RawExtensions.begin(), RawExtensions.end(), std::string_view(LowerAscii(extension)));
}

DecodedPicture DevelopRaw(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    bool damaged = false;
    // On the heap: the object is too large for a thread's stack.
    const auto library = std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK);
    library->set_dataerror_handler(NoteDamage, &damaged);
    if (stop != nullptr)
    {
        library->set_progress_handler(StopAsked, const_cast<std::atomic<bool> *>(stop));
    }
    const int opened = library->open_file(file.c_str());
    // The file itself could be read before, so a header that can't be is of an unknown kind.
    Check(opened == LIBRAW_IO_ERROR ? LIBRAW_FILE_UNSUPPORTED : opened);
    const UINT width = library->imgdata.sizes.width;
    const UINT height = library->imgdata.sizes.height;
    RequireDecodableSize(width, height);
    libraw_output_params_t &wanted = library->imgdata.params;
    wanted.use_camera_wb = 1;
    wanted.output_color = 1; // sRGB
    wanted.output_bps = 8;
    wanted.half_size = longEdge != 0 && std::max(width, height) / 2 >= longEdge ? 1 : 0;
    Check(library->unpack());
    Check(library->dcraw_process());
    if (damaged)
    {
        throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged or was cut short");
    }
    int channels = 0;
    int bits = 0;
    int columns = 0;
    int rows = 0;
    library->get_mem_image_format(&columns, &rows, &channels, &bits);
    if (columns <= 0 || rows <= 0 || (channels != 1 && channels != 3))
    {
        throw DecodingError(WINCODEC_ERR_BADIMAGE, "has no picture in colours that are known here");
    }
    std::vector<BYTE> developed(size_t(columns) * size_t(rows) * size_t(channels));
    Check(library->copy_mem_image(developed.data(), columns * channels, 0));
    DecodedPicture picture;
    picture.width = static_cast<UINT>(columns);
    picture.height = static_cast<UINT>(rows);
    if (channels == 3)
    {
        picture.pixels = std::move(developed);
        return picture;
    }
    picture.pixels.reserve(developed.size() * 3);
    for (const BYTE grey : developed)
    {
        picture.pixels.insert(picture.pixels.end(), 3, grey);
    }
    return picture;
}
