// How far processed pictures are from what they should look like, for a dozen kinds of source.
//
//     colour_accuracy PHOTOGRAPH LONG-EDGE
//
// The photograph is written in each kind. The reference takes the file's samples, converts them by lcms2 in floating
// point, lays them on white, and reduces them with a Lanczos filter of its own, in floating point too. Compared are
// the pixels that the host hands to the encoder, so the loss of the new JPEG doesn't count. Prints for each kind the
// mean and the largest difference in CIEDE2000, at full size and reduced.
#include "bench/ColourDifference.h"

#include "host/PictureDecoding.h"
#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"

#include <lcms2.h>
#include <vips/vips8>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace
{
using vips::VImage;

// Red, green, blue from 0 to 1.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<double> samples;
};

struct Source
{
    const char *words;
    const char *file;
    std::string profile; // empty for sRGB
    bool isEmbedded = true;
    VipsInterpretation space = VIPS_INTERPRETATION_sRGB;
    bool hasAlpha = false;
};

int ChannelsOf(VipsInterpretation space)
{
    return space == VIPS_INTERPRETATION_CMYK ? 4 : space == VIPS_INTERPRETATION_B_W ? 1 : 3;
}

cmsUInt32Number DoubleFormat(int channels)
{
    return FLOAT_SH(1) | CHANNELS_SH(static_cast<cmsUInt32Number>(channels)) | BYTES_SH(0);
}

cmsHPROFILE OpenProfile(const std::string &file)
{
    return file.empty() ? cmsCreate_sRGBProfile() : cmsOpenProfileFromFile(file.c_str(), "r");
}

// Converts as many pixels as there are, from samples between 0 and 1.
void Convert(const std::string &from, int channelsIn, std::vector<double> &samples, cmsHPROFILE to,
             cmsUInt32Number formatOut, std::vector<double> &converted)
{
    const cmsHPROFILE profile = OpenProfile(from);
    cmsUInt32Number intent = INTENT_RELATIVE_COLORIMETRIC;
    if (!cmsIsIntentSupported(profile, intent, LCMS_USED_AS_INPUT))
    {
        intent = INTENT_PERCEPTUAL;
    }
    const cmsHTRANSFORM transform =
        cmsCreateTransform(profile, DoubleFormat(channelsIn), to, formatOut, intent, cmsFLAGS_NOOPTIMIZE);
    const size_t pixels = samples.size() / static_cast<size_t>(channelsIn);
    converted.resize(pixels * 3);
    cmsDoTransform(transform, samples.data(), converted.data(), static_cast<cmsUInt32Number>(pixels));
    cmsDeleteTransform(transform);
    cmsCloseProfile(profile);
}

// The photograph's colours in the profile, so that both have them.
VImage InSpace(const VImage &photograph, const Source &source)
{
    VImage image = photograph;
    const bool isDeep = source.space == VIPS_INTERPRETATION_RGB16 || source.space == VIPS_INTERPRETATION_GREY16;
    if (source.space == VIPS_INTERPRETATION_CMYK)
    {
        image = image.invert().bandjoin(20.0);
    }
    else if (source.space == VIPS_INTERPRETATION_B_W)
    {
        image = image.colourspace(VIPS_INTERPRETATION_B_W);
    }
    else if (!source.profile.empty())
    {
        image = image.icc_transform(source.profile.c_str(),
                                    VImage::option()->set("input_profile", "srgb")->set("depth", isDeep ? 16 : 8));
    }
    if (source.hasAlpha)
    {
        image = image.bandjoin(128.0);
    }
    return image.cast(isDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR)
        .copy(VImage::option()->set("interpretation", source.space));
}

Picture Reference(const std::string &file, const Source &source)
{
    const VImage image = VImage::new_from_file(file.c_str());
    const double top = image.format() == VIPS_FORMAT_USHORT ? 65535 : 255;
    const int channels = ChannelsOf(source.space);
    const VImage scaled =
        image.extract_band(0, VImage::option()->set("n", channels)).linear(1 / top, 0).cast(VIPS_FORMAT_DOUBLE);
    size_t size = 0;
    double *const data = static_cast<double *>(scaled.write_to_memory(&size));
    std::vector<double> samples(data, data + size / sizeof(double));
    g_free(data);
    Picture picture{image.width(), image.height(), {}};
    const cmsHPROFILE screen = cmsCreate_sRGBProfile();
    if (source.isEmbedded && !source.profile.empty())
    {
        Convert(source.profile, channels, samples, screen, DoubleFormat(3) | COLORSPACE_SH(PT_RGB),
                picture.samples);
    }
    else
    {
        for (const double sample : samples)
        {
            picture.samples.insert(picture.samples.end(), channels == 1 ? 3 : 1, sample);
        }
    }
    cmsCloseProfile(screen);
    for (double &sample : picture.samples)
    {
        sample = std::clamp(sample, 0.0, 1.0);
        sample = source.hasAlpha ? (sample * 128 + 127) / 255 : sample;
    }
    return picture;
}

// One direction; the other comes by exchanging width and height.
Picture ReducedAcross(const Picture &from, int width)
{
    constexpr double lobes = 3;
    const double step = double(from.width) / width;
    const auto lanczos = [&](double x) {
        const double at = std::numbers::pi * x / step;
        return x == 0                        ? 1
               : std::abs(x) >= lobes * step ? 0
                                             : lobes * std::sin(at) * std::sin(at / lobes) / (at * at);
    };
    Picture to{from.height, width, std::vector<double>(size_t(width) * size_t(from.height) * 3)}; // turned
    for (int x = 0; x < width; ++x)
    {
        const double centre = (x + 0.5) * step - 0.5;
        const int first = static_cast<int>(std::ceil(centre - lobes * step));
        std::vector<double> weights;
        double sum = 0;
        for (int i = first; i <= centre + lobes * step; ++i)
        {
            weights.push_back(lanczos(i - centre));
            sum += weights.back();
        }
        for (int y = 0; y < from.height; ++y)
        {
            double *const target = &to.samples[(size_t(x) * size_t(from.height) + size_t(y)) * 3];
            for (size_t i = 0; i < weights.size(); ++i)
            {
                const int column = std::clamp(first + static_cast<int>(i), 0, from.width - 1);
                const double *const sample = &from.samples[(size_t(y) * size_t(from.width) + size_t(column)) * 3];
                for (int band = 0; band < 3; ++band)
                {
                    target[band] += sample[band] * weights[i] / sum;
                }
            }
        }
    }
    return to;
}

struct Differences
{
    double mean = 0;
    double largest = 0;
};

Differences Compare(const DecodedPicture &decoded, Picture &reference)
{
    if (int(decoded.width) != reference.width || int(decoded.height) != reference.height)
    {
        std::fprintf(stderr, "%u by %u instead of %d by %d\n", decoded.width, decoded.height, reference.width,
                     reference.height);
        std::exit(1);
    }
    std::vector<double> found;
    for (size_t i = 0; i < decoded.pixels.size(); i += 3)
    {
        for (const size_t band : {2, 1, 0})
        {
            found.push_back(decoded.pixels[i + band] / 255.0);
        }
    }
    for (double &sample : reference.samples)
    {
        sample = std::clamp(sample, 0.0, 1.0);
    }
    std::vector<double> labs[2];
    const cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
    Convert("", 3, found, lab, TYPE_Lab_DBL, labs[0]);
    Convert("", 3, reference.samples, lab, TYPE_Lab_DBL, labs[1]);
    cmsCloseProfile(lab);
    Differences differences;
    for (size_t i = 0; i < labs[0].size(); i += 3)
    {
        const double difference =
            DeltaE2000({labs[0][i], labs[0][i + 1], labs[0][i + 2]}, {labs[1][i], labs[1][i + 1], labs[1][i + 2]});
        differences.mean += difference / (double(labs[0].size()) / 3);
        differences.largest = std::max(differences.largest, difference);
    }
    return differences;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: colour_accuracy PHOTOGRAPH LONG-EDGE\n");
        return 2;
    }
    VIPS_INIT(argv[0]);
    const UINT longEdge = static_cast<UINT>(std::atoi(argv[2]));
    const TemporaryFolder folder;
    const SampleProfiles profiles(folder.Path());
    const std::string adobe = folder.Path() / "adobe.icc";
    const std::string p3 = folder.Path() / "p3.icc";
    const std::string wide = folder.Path() / "wide.icc";
    SaveRgbProfile({0.64, 0.33, 0.21, 0.71, 0.15, 0.06}, 2.19921875, adobe);
    SaveRgbProfile({0.680, 0.320, 0.265, 0.690, 0.150, 0.060}, 2.2, p3);
    SaveRgbProfile({0.7347, 0.2653, 0.1596, 0.8404, 0.0366, 0.0001}, 1.8, wide);
    const Source sources[] = {
        {"JPEG, sRGB without a profile", "plain.jpg[Q=95,subsample-mode=off]", "", false},
        {"JPEG, Adobe RGB", "adobe.jpg[Q=95,subsample-mode=off]", adobe},
        {"JPEG, Display P3, progressive", "p3.jpg[Q=95,subsample-mode=on,interlace]", p3},
        {"JPEG, gray with a profile", "gray.jpg[Q=95]", profiles.gray, true, VIPS_INTERPRETATION_B_W},
        {"JPEG, ink with a profile", "ink.jpg[Q=95]", profiles.ink, true, VIPS_INTERPRETATION_CMYK},
        {"TIFF, ink with a profile", "ink.tif", profiles.ink, true, VIPS_INTERPRETATION_CMYK},
        {"TIFF, Adobe RGB", "adobe.tif", adobe},
        {"TIFF, 16 bits, linear", "linear.tif", profiles.linear, true, VIPS_INTERPRETATION_RGB16},
        {"TIFF, 16 bits, wide gamut", "wide.tif", wide, true, VIPS_INTERPRETATION_RGB16},
        {"PNG, 16 bits, Display P3", "p3.png", p3, true, VIPS_INTERPRETATION_RGB16},
        {"PNG, half transparent, Adobe RGB", "adobe.png", adobe, true, VIPS_INTERPRETATION_sRGB, true},
        {"WebP, Display P3", "p3.webp[lossless]", p3},
    };
    const VImage photograph = VImage::new_from_file(argv[1]);
    std::printf("Difference to a reference in CIEDE2000, mean and largest (goal: 0.5 and 2):\n"
                "  %-34s %8s %8s  %8s %8s\n",
                "", "full", "size", "reduced", "");
    for (const Source &source : sources)
    {
        const std::string saver = folder.Path() / source.file;
        const std::string file = saver.substr(0, saver.find('['));
        InSpace(photograph, source)
            .write_to_file(saver.c_str(),
                           source.isEmbedded ? VImage::option()->set("profile", source.profile.c_str()) : nullptr);
        Picture reference = Reference(file, source);
        const Differences full = Compare(DecodePicture(file, 0, nullptr), reference);
        const DecodedPicture little = DecodePicture(file, longEdge, nullptr);
        Picture reduced = ReducedAcross(ReducedAcross(reference, static_cast<int>(little.width)),
                                        static_cast<int>(little.height));
        const Differences scaled = Compare(little, reduced);
        std::printf("  %-34s %8.2f %8.2f  %8.2f %8.2f\n", source.words, full.mean, full.largest, scaled.mean,
                    scaled.largest);
    }
}
