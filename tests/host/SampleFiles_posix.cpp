#include "tests/host/SampleFiles.h"

#include <lcms2.h>
#include <vips/vips8>

#include <cstdlib>
#include <stdexcept>

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
    else if (options.interpretation == "ink")
    {
        image = image.invert()
                    .bandjoin(0.0)
                    .cast(VIPS_FORMAT_UCHAR)
                    .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_CMYK));
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

void Exiftool(const std::string &arguments, const std::filesystem::path &file)
{
    const std::string command = "exiftool -q -q -m -overwrite_original " + arguments + " " + file.string();
    if (std::system(command.c_str()) != 0)
    {
        throw std::runtime_error(command);
    }
}

namespace
{
void Save(cmsHPROFILE profile, const std::string &file)
{
    cmsSaveProfileToFile(profile, file.c_str());
    cmsCloseProfile(profile);
}

// Inks as filters in front of a screen, of which yellow is called cyan.
cmsInt32Number ToLab(const cmsUInt16Number ink[], cmsUInt16Number lab[], void *screenToLab)
{
    const auto passes = [&](int number) { return 1 - ink[number] / 65535.0; };
    const double rgb[] = {passes(2) * passes(3), passes(1) * passes(3), passes(0) * passes(3)};
    cmsCIELab colour;
    cmsDoTransform(screenToLab, rgb, &colour, 1);
    cmsFloat2LabEncodedV2(lab, &colour);
    return 1;
}

void SaveInk(const std::string &file)
{
    const cmsHPROFILE screen = cmsCreate_sRGBProfile();
    const cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
    const cmsHTRANSFORM conversion =
        cmsCreateTransform(screen, TYPE_RGB_DBL, lab, TYPE_Lab_DBL, INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE);
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.4);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline *const table = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage *const grid = cmsStageAllocCLut16bit(nullptr, 9, 4, 3, nullptr);
    cmsStageSampleCLut16bit(grid, ToLab, conversion, 0);
    cmsPipelineInsertStage(table, cmsAT_END, grid);
    cmsWriteTag(profile, cmsSigAToB0Tag, table);
    cmsPipelineFree(table);
    cmsDeleteTransform(conversion);
    cmsCloseProfile(screen);
    cmsCloseProfile(lab);
    Save(profile, file);
}
} // namespace

void SaveRgbProfile(const double (&primaries)[6], double gamma, const std::string &file)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1.0};
    const cmsCIExyYTRIPLE points = {
        {primaries[0], primaries[1], 1}, {primaries[2], primaries[3], 1}, {primaries[4], primaries[5], 1}};
    cmsToneCurve *const curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve *const curves[] = {curve, curve, curve};
    Save(cmsCreateRGBProfile(&white, &points, curves), file);
    cmsFreeToneCurve(curve);
}

SampleProfiles::SampleProfiles(const std::filesystem::path &folder)
    : exchanged(folder / "exchanged.icc"),
      linear(folder / "linear.icc"),
      gray(folder / "gray.icc"),
      ink(folder / "ink.icc")
{
    SaveRgbProfile({0.30, 0.60, 0.64, 0.33, 0.15, 0.06}, 2.2, exchanged);
    SaveRgbProfile({0.64, 0.33, 0.30, 0.60, 0.15, 0.06}, 1, linear);
    const cmsCIExyY white = {0.3127, 0.3290, 1.0};
    cmsToneCurve *const curve = cmsBuildGamma(nullptr, 1.2);
    Save(cmsCreateGrayProfile(&white, curve), gray);
    cmsFreeToneCurve(curve);
    SaveInk(ink);
}
