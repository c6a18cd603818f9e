#include "host/PictureHeader_posix.h"

#include "host/ExifFields.h"
#include "host/JpegFile.h"
#include "host/PictureDecoding.h"

#include <vips/vips.h>

#include <wincodec.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <string_view>

namespace
{
struct Unref
{
    void operator()(VipsImage *image) const noexcept { g_object_unref(image); }
};

// The library's report of what went wrong in this process, in one line.
std::string TakeReport()
{
    std::string report = vips_error_buffer();
    vips_error_clear();
    std::replace(report.begin(), report.end(), '\n', ' ');
    report.resize(report.find_last_not_of(' ') + 1);
    return report;
}

// A field as the library tells it, one of EXIF as "240/1 (240, Rational, 1 components, 8 bytes)"; empty if there
// is none.
std::string_view TextField(VipsImage *image, const char *name)
{
    const char *text = nullptr;
    return vips_image_get_typeof(image, name) != 0 && vips_image_get_string(image, name, &text) == 0
               ? std::string_view(text)
               : std::string_view();
}

// A whole number or a rational; 0 if it isn't there.
double NumberOf(std::string_view field)
{
    unsigned numerator = 0;
    unsigned denominator = 1;
    const char *const end = field.data() + field.size();
    const char *const behind = std::from_chars(field.data(), end, numerator).ptr;
    if (behind != end && *behind == '/')
    {
        std::from_chars(behind + 1, end, denominator);
    }
    return denominator != 0 ? double(numerator) / denominator : 0;
}

// HEIF and WebP tell a resolution in their EXIF blocks alone, where the library doesn't look for it: for them it
// reports its default, and as if that were the file's.
void ReadResolution(VipsImage *image, PictureHeader &header)
{
    const std::string_view loader = TextField(image, VIPS_META_LOADER);
    if (loader.starts_with("heifload") || loader.starts_with("webpload"))
    {
        constexpr int none = 1;
        constexpr int centimetre = 3;
        const auto unit = static_cast<int>(NumberOf(TextField(image, "exif-ifd0-ResolutionUnit")));
        const double perInch = unit == none ? 0 : unit == centimetre ? 2.54 : 1;
        header.dpiX = NumberOf(TextField(image, "exif-ifd0-XResolution")) * perInch;
        header.dpiY = NumberOf(TextField(image, "exif-ifd0-YResolution")) * perInch;
    }
    // An EXIF block has a resolution of its own, as in pictures that keep their pixels.
    else if (const auto proportions = JfifProportions(vips_image_get_filename(image));
             proportions && vips_image_get_typeof(image, VIPS_META_EXIF_NAME) == 0)
    {
        header.dpiX = proportions->x;
        header.dpiY = proportions->y;
    }
    // Without this field the library reports a default resolution of its own.
    else if (vips_image_get_typeof(image, VIPS_META_RESOLUTION_UNIT) != 0)
    {
        header.dpiX = vips_image_get_xres(image) * 25.4;
        header.dpiY = vips_image_get_yres(image) * 25.4;
    }
}

std::optional<ProfileIntent> IntentOf(VipsImage *image)
{
    const void *profile = nullptr;
    size_t size = 0;
    if (vips_image_get_typeof(image, VIPS_META_ICC_NAME) == 0 ||
        vips_image_get_blob(image, VIPS_META_ICC_NAME, &profile, &size) != 0)
    {
        return std::nullopt;
    }
    const ColourKind kind = vips_image_get_interpretation(image) == VIPS_INTERPRETATION_CMYK ? ColourKind::Ink
                            : vips_image_get_bands(image) < 3                                ? ColourKind::Gray
                                                                                             : ColourKind::Screen;
    return IntentFor({static_cast<const char *>(profile), size}, kind);
}
} // namespace

ImagingThread::ImagingThread()
{
    static const bool Started = [] {
        if (vips_init("halvora") != 0)
        {
            return false;
        }
        // No picture is decoded twice, and the library's warnings would break into the progress line.
        vips_cache_set_max(0);
        g_log_set_handler(
            "VIPS", G_LOG_LEVEL_MASK, [](const gchar *, GLogLevelFlags, const gchar *, gpointer) {}, nullptr);
        return true;
    }();
    if (!Started)
    {
        throw DecodingError(E_UNEXPECTED, "can't be decoded: the imaging library doesn't start");
    }
}

ImagingThread::~ImagingThread()
{
    vips_thread_shutdown();
}

void ThrowImagingError(const std::atomic<bool> *stop)
{
    const std::string report = TakeReport();
    if (stop != nullptr && *stop)
    {
        throw DecodingError(E_ABORT, "was not finished");
    }
    if (report.find("out of memory") != std::string::npos)
    {
        throw DecodingError(E_OUTOFMEMORY, "needs more memory than there is");
    }
    if (report.find("data precision 12") != std::string::npos)
    {
        throw DecodingError(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT,
                            "is a JPEG with 12 bits for each colour; save it with 8, and publish that");
    }
    throw DecodingError(WINCODEC_ERR_BADIMAGE,
                        "is damaged or was cut short" + (report.empty() ? std::string() : ": " + report));
}

PictureHeader ReadPictureHeader(const std::filesystem::path &file)
{
    if (vips_foreign_find_load(file.c_str()) == nullptr)
    {
        vips_error_clear();
        throw DecodingError(WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "is not a picture format that Halvora can read");
    }
    const std::unique_ptr<VipsImage, Unref> image(
        vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr));
    if (!image)
    {
        ThrowImagingError(nullptr);
    }
    const UINT64 width = static_cast<UINT64>(vips_image_get_width(image.get()));
    const UINT64 height = static_cast<UINT64>(vips_image_get_height(image.get()));
    RequireDecodableSize(width, height);
    PictureHeader header;
    ReadResolution(image.get(), header);
    if (vips_image_get_orientation_swap(image.get()))
    {
        std::swap(header.dpiX, header.dpiY);
    }
    header.longEdge = static_cast<UINT>(std::max(width, height));
    const std::string_view loader = TextField(image.get(), VIPS_META_LOADER);
    header.isJpeg = loader == "jpegload";
    int isInScans = 0;
    header.isInScans = vips_image_get_typeof(image.get(), "jpeg-multiscan") != 0 &&
                       vips_image_get_int(image.get(), "jpeg-multiscan", &isInScans) == 0 && isInScans != 0;
    header.intent = IntentOf(image.get());
    const VipsInterpretation interpretation = vips_image_get_interpretation(image.get());
    header.goesByStep = (header.intent && (interpretation == VIPS_INTERPRETATION_CMYK ||
                                           interpretation == VIPS_INTERPRETATION_RGB16 ||
                                           interpretation == VIPS_INTERPRETATION_GREY16)) ||
                        loader.starts_with("webpload");
    header.isAdobeRgb = !header.intent && interpretation != VIPS_INTERPRETATION_CMYK &&
                        vips_image_get_bands(image.get()) >= 3 &&
                        IsAdobeRgb(static_cast<long>(NumberOf(TextField(image.get(), "exif-ifd2-ColorSpace"))),
                                   TextField(image.get(), "exif-ifd4-InteroperabilityIndex"));
    return header;
}
