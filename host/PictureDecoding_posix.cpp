#include "host/PictureDecoding.h"

#include "host/AdobeRgbProfile_posix.h"
#include "host/DcfColours.h"
#include "com/ErrnoCodes_posix.h"
#include "host/ColourProfile_posix.h"
#include "host/FileNames.h"
#include "host/PictureCheck.h"
#include "host/RawDecoding_posix.h"
#include "com/WholeFile.h"

#include <vips/vips.h>

#include <wincodec.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

using namespace std::string_view_literals;

namespace
{
struct UnrefObject
{
    void operator()(VipsImage *image) const noexcept { g_object_unref(image); }
    void operator()(VipsObject *object) const noexcept { g_object_unref(object); }
};
using Image = std::unique_ptr<VipsImage, UnrefObject>;

void StartLibraryOnce()
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

// The library's report of what went wrong in this process, in one line.
std::string TakeReport()
{
    std::string report = vips_error_buffer();
    vips_error_clear();
    std::replace(report.begin(), report.end(), '\n', ' ');
    report.resize(report.find_last_not_of(' ') + 1);
    return report;
}

[[noreturn]] void ThrowBroken(const std::atomic<bool> *stop)
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

std::string FirstBytes(const std::filesystem::path &file)
{
    if (const std::error_code fault = TryToRead(file))
    {
        throw DecodingError(HRESULT_FROM_WIN32(Win32FromErrno(fault.value())),
                            "can't be read: " + FileErrorWords(fault));
    }
    char bytes[12];
    std::ifstream content(file, std::ios::binary);
    content.read(bytes, sizeof(bytes));
    return std::string(bytes, static_cast<size_t>(content.gcount()));
}

// Kinds that no camera raw file begins with. Many raw files are TIFF outside, and a reader of TIFF finds
// their thumbnails only, so the extension decides there.
bool IsPlainKind(std::string_view start)
{
    return start.starts_with("\xFF\xD8"sv) || start.starts_with("\x89PNG"sv) || start.starts_with("GIF8"sv) ||
           start.starts_with("RIFF"sv);
}

struct FileHeader
{
    double dpiX = 0;
    double dpiY = 0;
    UINT longEdge = 0;
    bool isJpeg = false;
    bool isInScans = false;
    // Of the file's profile, if its colours can be converted by it.
    std::optional<ProfileIntent> intent;
    // The library converts ink by a profile of its own, and cuts sixteen bits to eight, before it looks at the
    // file's profile; and WebP's decoder scales with a poor filter. Such pictures are loaded, then converted, then
    // scaled.
    bool goesByStep = false;
    bool isAdobeRgb = false; // by EXIF, of a file without a profile that fits
};

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
void ReadResolution(VipsImage *image, FileHeader &header)
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

FileHeader ReadHeader(const std::filesystem::path &file)
{
    const Image image(vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr));
    if (!image)
    {
        ThrowBroken(nullptr);
    }
    const UINT64 width = static_cast<UINT64>(vips_image_get_width(image.get()));
    const UINT64 height = static_cast<UINT64>(vips_image_get_height(image.get()));
    if (width * height > MaxPicturePixels)
    {
        throw DecodingError(WINCODEC_ERR_IMAGESIZEOUTOFRANGE,
                            "says that it is " + std::to_string(width) + " by " + std::to_string(height) +
                                " pixels large; at most " + std::to_string(MaxPicturePixels / 1'000'000) +
                                " megapixels can be decoded");
    }
    FileHeader header;
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

// Replaces the image by the result of an operation on it.
template <class Operation>
void Follow(Image &image, const std::atomic<bool> *stop, Operation operation)
{
    VipsImage *made = nullptr;
    if (operation(image.get(), &made) != 0)
    {
        ThrowBroken(stop);
    }
    image.reset(made);
}

void StopWhenAsked(VipsImage *image, VipsProgress *, const std::atomic<bool> *stop)
{
    if (*stop)
    {
        vips_image_set_kill(image, TRUE);
    }
}

// Called with one strip of rows after the other, from threads of the library.
int TakeRows(VipsRegion *region, VipsRect *area, void *target) noexcept
{
    DecodedPicture &picture = *static_cast<DecodedPicture *>(target);
    for (int line = 0; line < area->height; ++line)
    {
        const VipsPel *from = VIPS_REGION_ADDR(region, area->left, area->top + line);
        BYTE *to = picture.pixels.data() + size_t(area->top + line) * picture.RowBytes() + size_t(area->left) * 3;
        for (int column = 0; column < area->width; ++column, from += 3, to += 3)
        {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
    return 0;
}

void ConvertFromAdobeRgb(Image &image, const std::atomic<bool> *stop)
{
    const std::string &profile = AdobeRgbProfile();
    Follow(image, stop, [](VipsImage *in, VipsImage **out) { return vips_copy(in, out, nullptr); });
    vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, profile.data(), profile.size());
    Follow(image, stop, [](VipsImage *in, VipsImage **out) {
        return vips_icc_transform(in, out, "srgb", "embedded", TRUE, nullptr);
    });
}

// 8 bits in sRGB, laid on white.
DecodedPicture Finish(Image image, const std::atomic<bool> *stop)
{
    if (vips_image_hasalpha(image.get()))
    {
        const double white[] = {255};
        VipsArrayDouble *background = vips_array_double_new(white, 1);
        const std::unique_ptr<VipsArrayDouble, void (*)(VipsArrayDouble *)> owned(
            background, [](VipsArrayDouble *array) { vips_area_unref(VIPS_AREA(array)); });
        Follow(image, stop, [&](VipsImage *in, VipsImage **out) {
            return vips_flatten(in, out, "background", background, nullptr);
        });
    }
    if (vips_image_get_interpretation(image.get()) != VIPS_INTERPRETATION_sRGB)
    {
        Follow(image, stop, [](VipsImage *in, VipsImage **out) {
            return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
        });
    }
    Follow(image, stop, [](VipsImage *in, VipsImage **out) { return vips_cast_uchar(in, out, nullptr); });
    if (vips_image_get_bands(image.get()) == 1)
    {
        Follow(image, stop, [](VipsImage *in, VipsImage **out) {
            VipsImage *thrice[] = {in, in, in};
            return vips_bandjoin(thrice, out, 3, nullptr);
        });
    }
    if (vips_image_get_bands(image.get()) != 3)
    {
        Follow(image, stop,
               [](VipsImage *in, VipsImage **out) { return vips_extract_band(in, out, 0, "n", 3, nullptr); });
    }
    DecodedPicture picture;
    picture.width = static_cast<UINT>(vips_image_get_width(image.get()));
    picture.height = static_cast<UINT>(vips_image_get_height(image.get()));
    picture.pixels.resize(picture.RowBytes() * picture.height);
    if (stop != nullptr)
    {
        vips_image_set_progress(image.get(), TRUE);
        g_signal_connect(image.get(), "eval", G_CALLBACK(StopWhenAsked), const_cast<std::atomic<bool> *>(stop));
    }
    if (vips_sink_disc(image.get(), TakeRows, &picture) != 0)
    {
        ThrowBroken(stop);
    }
    return picture;
}

int EdgeFor(UINT longEdge)
{
    return longEdge == 0 || longEdge > VIPS_MAX_COORD ? VIPS_MAX_COORD : static_cast<int>(longEdge);
}

Image Reduced(Image image, UINT longEdge, const std::atomic<bool> *stop)
{
    const int edge = EdgeFor(longEdge);
    Follow(image, stop, [&](VipsImage *in, VipsImage **out) {
        return vips_thumbnail_image(in, out, edge, "height", edge, "size", VIPS_SIZE_DOWN, nullptr);
    });
    return image;
}

// Without a profile that fits, the colours are sRGB already, or Finish converts them.
Image ScaleAndConvert(const std::filesystem::path &file, UINT longEdge, const FileHeader &header,
                      VipsFailOn failOn, const std::atomic<bool> *stop)
{
    const int edge = EdgeFor(longEdge);
    VipsImage *scaled = nullptr;
    const int result = header.intent ? vips_thumbnail(file.c_str(), &scaled, edge, "height", edge, "size",
                                                      VIPS_SIZE_DOWN, "fail_on", failOn, "export_profile", "srgb",
                                                      "intent", static_cast<VipsIntent>(*header.intent), nullptr)
                                     : vips_thumbnail(file.c_str(), &scaled, edge, "height", edge, "size",
                                                      VIPS_SIZE_DOWN, "fail_on", failOn, nullptr);
    if (result != 0)
    {
        ThrowBroken(stop);
    }
    return Image(scaled);
}

// How much smaller the decoder of JPEG is to make the picture; the rest of the scaling needs twice the size.
int DecoderShrink(const FileHeader &header, UINT longEdge)
{
    int shrink = 1;
    while (longEdge != 0 && shrink < 8 && header.longEdge / (shrink * 2) >= longEdge * 2)
    {
        shrink *= 2;
    }
    return shrink;
}

Image ConvertAndScale(const std::filesystem::path &file, UINT longEdge, const FileHeader &header,
                      VipsFailOn failOn, const std::atomic<bool> *stop)
{
    Image image(header.isJpeg
                    ? vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn,
                                               "shrink", DecoderShrink(header, longEdge), nullptr)
                    : vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn,
                                               nullptr));
    if (!image)
    {
        ThrowBroken(stop);
    }
    if (header.intent)
    {
        Follow(image, stop, [&](VipsImage *in, VipsImage **out) {
            return vips_icc_transform(in, out, "srgb", "embedded", TRUE, "depth", 8, "intent",
                                      static_cast<VipsIntent>(*header.intent), nullptr);
        });
    }
    return Reduced(std::move(image), longEdge, stop);
}

// Of a picture in several scans the decoder holds all coefficients, two bytes for each sample: two such pictures at
// a time would take twice that.
std::mutex ScansLock;

DecodedPicture DecodePlain(const std::filesystem::path &file, UINT longEdge, const FileHeader &header,
                           VipsFailOn failOn, const std::atomic<bool> *stop)
{
    std::unique_lock oneAtATime(ScansLock, std::defer_lock);
    if (header.isInScans)
    {
        oneAtATime.lock();
    }
    Image scaled = header.goesByStep ? ConvertAndScale(file, longEdge, header, failOn, stop)
                                     : ScaleAndConvert(file, longEdge, header, failOn, stop);
    if (header.isAdobeRgb)
    {
        ConvertFromAdobeRgb(scaled, stop);
    }
    DecodedPicture picture = Finish(std::move(scaled), stop);
    picture.dpiX = header.dpiX;
    picture.dpiY = header.dpiY;
    return picture;
}

[[noreturn]] void ThrowDamaged(const PictureSurvey &survey)
{
    throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged or was cut short: " + survey.damage);
}

// The decoder has read all scans before it gives the first row, and warns of what is wrong. It also warns of what is
// odd and does no harm, so the check says whether it is damage.
DecodedPicture DecodeScans(const std::filesystem::path &file, UINT longEdge, const FileHeader &header,
                           const std::atomic<bool> *stop)
{
    try
    {
        return DecodePlain(file, longEdge, header, VIPS_FAIL_ON_WARNING, stop);
    }
    catch (const DecodingError &error)
    {
        const PictureSurvey survey = SurveyFile(file, stop);
        if (survey.state == PictureState::Damaged)
        {
            ThrowDamaged(survey);
        }
        if (error.Code() != WINCODEC_ERR_BADIMAGE || survey.state != PictureState::Whole)
        {
            throw;
        }
    }
    return DecodePlain(file, longEdge, header, VIPS_FAIL_ON_NONE, stop);
}

// The decoder doesn't look at what is behind the last row, where damage before it shows. The check costs a fraction of
// the decoding, and runs beside it.
DecodedPicture DecodeOneScan(const std::filesystem::path &file, UINT longEdge, const FileHeader &header,
                             const std::atomic<bool> *stop)
{
    auto check = std::async(std::launch::async, SurveyFile, file, stop);
    DecodedPicture picture = DecodePlain(file, longEdge, header, VIPS_FAIL_ON_NONE, stop);
    const PictureSurvey survey = check.get();
    switch (survey.state)
    {
    case PictureState::Whole:
        break;
    case PictureState::Damaged:
        ThrowDamaged(survey);
    case PictureState::Unknown:
        return DecodePlain(file, longEdge, header, VIPS_FAIL_ON_WARNING, stop);
    }
    return picture;
}

DecodedPicture DecodeFile(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    if (vips_foreign_find_load(file.c_str()) == nullptr)
    {
        vips_error_clear();
        throw DecodingError(WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "is not a picture format that Halvora can read");
    }
    const FileHeader header = ReadHeader(file);
    if (!header.isJpeg)
    {
        return DecodePlain(file, longEdge, header, VIPS_FAIL_ON_TRUNCATED, stop);
    }
    return header.isInScans ? DecodeScans(file, longEdge, header, stop)
                            : DecodeOneScan(file, longEdge, header, stop);
}

DecodedPicture Scale(DecodedPicture developed, UINT longEdge, const std::atomic<bool> *stop)
{
    Image image(vips_image_new_from_memory(developed.pixels.data(), developed.pixels.size(),
                                           static_cast<int>(developed.width), static_cast<int>(developed.height),
                                           3, VIPS_FORMAT_UCHAR));
    if (!image)
    {
        ThrowBroken(stop);
    }
    image->Type = VIPS_INTERPRETATION_sRGB;
    return Finish(Reduced(std::move(image), longEdge, stop), stop);
}
} // namespace

DecodedPicture DecodePicture(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    StartLibraryOnce();
    // Each thread that used the library leaves buffers of its own with it.
    const struct EndOfThread
    {
        ~EndOfThread() { vips_thread_shutdown(); }
    } endOfThread;
    if (!IsPlainKind(FirstBytes(file)) && IsRawExtension(ExtensionOf(file)))
    {
        return Scale(DevelopRaw(file, longEdge, stop), longEdge, stop);
    }
    return DecodeFile(file, longEdge, stop);
}
