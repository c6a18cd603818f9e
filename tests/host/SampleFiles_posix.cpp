#include "tests/host/SampleFiles.h"

#include <lcms2.h>
#include <vips/vips8>

using vips::VImage;

namespace
{
void StartLibrary()
{
    static const int Started = VIPS_INIT("tests");
    static_cast<void>(Started);
}

VImage Flat(int width, int height, const Rgb &colour)
{
    const std::vector<double> bands = {double(colour.red), double(colour.green), double(colour.blue)};
    return VImage::black(width, height)
        .new_from_image(bands)
        .cast(VIPS_FORMAT_UCHAR)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}
} // namespace

void MakeSample(const std::filesystem::path &file, int width, int height, const PictureOptions &options)
{
    StartLibrary();
    const int left = width / 2;
    const int top = height / 2;
    VImage image =
        Flat(left, top, {255, 0, 0})
            .join(Flat(width - left, top, {0, 255, 0}), VIPS_DIRECTION_HORIZONTAL)
            .join(Flat(left, height - top, {0, 0, 255})
                      .join(Flat(width - left, height - top, {255, 255, 255}), VIPS_DIRECTION_HORIZONTAL),
                  VIPS_DIRECTION_VERTICAL);
    if (options.interpretation == "cmyk")
    {
        image = image.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb"));
    }
    else if (options.interpretation == "rgb16")
    {
        image = image.colourspace(VIPS_INTERPRETATION_RGB16);
    }
    else if (options.interpretation == "b-w")
    {
        image = image.colourspace(VIPS_INTERPRETATION_B_W);
    }
    if (options.alpha)
    {
        image = image.bandjoin(0.0).cast(VIPS_FORMAT_UCHAR);
    }
    if (options.dpi != 0)
    {
        image = image.copy(VImage::option()->set("xres", options.dpi / 25.4)->set("yres", options.dpi / 25.4));
        image.set(VIPS_META_RESOLUTION_UNIT, "in");
    }
    if (options.orientation != 0)
    {
        image = image.copy();
        image.set(VIPS_META_ORIENTATION, options.orientation);
    }
    image.write_to_file((file.string() + options.saver).c_str(),
                        options.profile.empty() ? nullptr
                                                : VImage::option()->set("profile", options.profile.c_str()));
}

void MakeAnimation(const std::filesystem::path &file)
{
    StartLibrary();
    VImage image = Flat(20, 10, {255, 0, 0}).join(Flat(20, 10, {0, 255, 0}), VIPS_DIRECTION_VERTICAL);
    image = image.copy();
    image.set(VIPS_META_PAGE_HEIGHT, 10);
    image.write_to_file(file.c_str());
}

std::filesystem::path MakeExchangedProfile(const std::filesystem::path &folder)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1.0};
    const cmsCIExyYTRIPLE primaries = {{0.30, 0.60, 1}, {0.64, 0.33, 1}, {0.15, 0.06, 1}};
    cmsToneCurve *const curve = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve *const curves[] = {curve, curve, curve};
    const cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    const std::filesystem::path file = folder / "exchanged.icc";
    cmsSaveProfileToFile(profile, file.c_str());
    cmsCloseProfile(profile);
    cmsFreeToneCurve(curve);
    return file;
}
