#include "host/PixelDecoding_posix.h"

#include <vips/vips.h>

#include <memory>
#include <mutex>

namespace
{
struct UnrefObject
{
    void operator()(VipsImage *image) const noexcept { g_object_unref(image); }
    void operator()(VipsObject *object) const noexcept { g_object_unref(object); }
};
using Image = std::unique_ptr<VipsImage, UnrefObject>;

// Replaces the image by the result of an operation on it.
template <class Operation>
void Follow(Image &image, const std::atomic<bool> *stop, Operation operation)
{
    VipsImage *made = nullptr;
    if (operation(image.get(), &made) != 0)
    {
        ThrowImagingError(stop);
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
        vips_image_set_int(image.get(), VIPS_META_CONCURRENCY, 1);
        vips_image_set_progress(image.get(), TRUE);
        g_signal_connect(image.get(), "eval", G_CALLBACK(StopWhenAsked), const_cast<std::atomic<bool> *>(stop));
    }
    if (vips_sink_disc(image.get(), TakeRows, &picture) != 0)
    {
        ThrowImagingError(stop);
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
Image ScaleAndConvert(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
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
        ThrowImagingError(stop);
    }
    return Image(scaled);
}

// How much smaller the decoder of JPEG is to make the picture; the rest of the scaling needs twice the size.
int DecoderShrink(const PictureHeader &header, UINT longEdge)
{
    int shrink = 1;
    while (longEdge != 0 && shrink < 8 && header.longEdge / (shrink * 2) >= longEdge * 2)
    {
        shrink *= 2;
    }
    return shrink;
}

Image ConvertAndScale(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
                      VipsFailOn failOn, const std::atomic<bool> *stop)
{
    Image image(header.isJpeg
                    ? vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn,
                                               "shrink", DecoderShrink(header, longEdge), nullptr)
                    : vips_image_new_from_file(file.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn,
                                               nullptr));
    if (!image)
    {
        ThrowImagingError(stop);
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

// Of a picture in several scans the decoder holds all coefficients until it has read the last scan, two bytes each:
// 72 MB for 24 megapixels with colours at half the resolution. It knows no other way. So that a run needs that once,
// such pictures are decoded one at a time, however many threads there are.
std::mutex ScansLock;

VipsFailOn FailOn(Refusal refusal)
{
    return refusal == Refusal::None         ? VIPS_FAIL_ON_NONE
           : refusal == Refusal::Truncation ? VIPS_FAIL_ON_TRUNCATED
                                            : VIPS_FAIL_ON_WARNING;
}
} // namespace

DecodedPicture DecodePixels(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
                            Refusal refusal, const std::atomic<bool> *stop)
{
    std::unique_lock oneAtATime(ScansLock, std::defer_lock);
    if (header.isInScans)
    {
        oneAtATime.lock();
    }
    Image scaled = header.goesByStep ? ConvertAndScale(file, longEdge, header, FailOn(refusal), stop)
                                     : ScaleAndConvert(file, longEdge, header, FailOn(refusal), stop);
    if (header.isAdobeRgb)
    {
        ConvertFromAdobeRgb(scaled, stop);
    }
    DecodedPicture picture = Finish(std::move(scaled), stop);
    picture.dpiX = header.dpiX;
    picture.dpiY = header.dpiY;
    return picture;
}

DecodedPicture ScalePixels(DecodedPicture developed, UINT longEdge, const std::atomic<bool> *stop)
{
    Image image(vips_image_new_from_memory(developed.pixels.data(), developed.pixels.size(),
                                           static_cast<int>(developed.width), static_cast<int>(developed.height),
                                           3, VIPS_FORMAT_UCHAR));
    if (!image)
    {
        ThrowImagingError(stop);
    }
    image->Type = VIPS_INTERPRETATION_sRGB;
    return Finish(Reduced(std::move(image), longEdge, stop), stop);
}
