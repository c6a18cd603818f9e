#include "tests/host/PictureDecodingFixture.h"

#include "tests/host/SampleDng.h"

#include <wincodec.h>

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST_F(PictureDecoding, EveryKindGivesTheSamePicture)
{
    ExpectKinds({
        {"a.jpg", {.saver = "[Q=100,subsample-mode=off]"}, 3},
        {"a16.png", {.interpretation = "rgb16"}, 0},
        {"a.gif", {}, 0},
        {"tiled.tif", {.saver = "[tile,compression=deflate]"}, 0},
        {"a16.tif", {.interpretation = "rgb16"}, 0},
        {"a.webp", {.saver = "[lossless]"}, 0},
        {"a.avif", {}, 30},
        {"profiled.png", {.profile = "srgb"}, 1},
    });
}

TEST_F(PictureDecoding, ColoursAreConvertedFromTheFilesProfile)
{
    const SampleProfiles profiles(m_folder.Path());
    const std::array<Rgb, 4> greenFirst = {Green, Red, Blue, White};
    const std::array<Rgb, 4> blueFirst = {Blue, Green, Red, White};
    const struct
    {
        const char *name;
        PictureOptions options;
        std::array<Rgb, 4> colours;
    } cases[] = {
        {"a.png", {.profile = profiles.exchanged}, greenFirst},
        {"a16.png", {.profile = profiles.exchanged, .interpretation = "rgb16"}, greenFirst},
        {"a.jpg", {.saver = "[Q=100,subsample-mode=off]", .profile = profiles.exchanged}, greenFirst},
        {"ink.tif", {.profile = profiles.ink, .interpretation = "ink"}, blueFirst},
        {"ink.jpg", {.saver = "[Q=100]", .profile = profiles.ink, .interpretation = "ink"}, blueFirst},
        {"linear16.tif", {.profile = profiles.linear, .interpretation = "rgb16"}, Flag},
    };
    for (const auto &each : cases)
    {
        SCOPED_TRACE(each.name);
        const fs::path file = Sample(each.name, 256, 128, each.options);
        for (const UINT edge : {0u, 128u, 16u})
        {
            const DecodedPicture picture = DecodePicture(file, edge, nullptr);
            EXPECT_EQ(picture.width, edge == 0 ? 256 : edge);
            ExpectQuarters(picture, each.colours, 4);
        }
    }
    // Ink without a profile: that of a common press, as viewers take it.
    const auto inks = Quarters(DecodePicture(Sample("cmyk.tif", 48, 32, {.interpretation = "cmyk"}), 0, nullptr));
    EXPECT_LE(Distance(inks[1], {197, 208, 18}), 10) << inks[1].red << " " << inks[1].green << " " << inks[1].blue;
}

TEST_F(PictureDecoding, AdobeRgbThatExifAloneTellsIsConverted)
{
    const struct
    {
        const char *fields;
        const char *profile;
        bool isAdobe;
    } cases[] = {
        {"-ExifIFD:ColorSpace#=65535 -InteropIFD:InteropIndex=R03", "", true},
        {"-ExifIFD:ColorSpace#=2", "", true},
        {"-ExifIFD:ColorSpace#=65535 -InteropIFD:InteropIndex=R98", "", false},
        {"-ExifIFD:ColorSpace#=1 -InteropIFD:InteropIndex=R03", "", false},
        {"-ExifIFD:ColorSpace#=65535 -InteropIFD:InteropIndex=R03", "srgb", false},
    };
    for (const auto &c : cases)
    {
        const fs::path file =
            Sample("exif.jpg", 240, 240, {.saver = "[Q=100,subsample-mode=off]", .profile = c.profile});
        Exiftool(c.fields, file);
        // Halfway between green and white: such a green has less than no red in sRGB.
        const int red = PixelAt(DecodePicture(file, 3, nullptr), 2, 1).red;
        EXPECT_TRUE(c.isAdobe ? red < 40 : red > 90) << c.fields << c.profile << ": " << red;
    }
}

TEST_F(PictureDecoding, AProfileThatDoesNotFitCountsAsNone)
{
    const SampleProfiles profiles(m_folder.Path());
    std::string bytes = m_folder.Read("exchanged.icc");
    std::fill_n(bytes.begin() + 128, 200, '\x7F');
    const std::string broken = m_folder.Write("broken.icc", bytes).string();
    const std::pair<const char *, const std::string &> cases[] = {
        {"b-w", profiles.exchanged}, {"", profiles.gray},         {"", profiles.ink},    {"", broken},
        {"rgb16", profiles.gray},    {"ink", profiles.exchanged}, {"b-w", profiles.ink},
    };
    for (const auto &[interpretation, profile] : cases)
    {
        SCOPED_TRACE(profile);
        SCOPED_TRACE(interpretation);
        const fs::path plain = Sample("plain.tif", 32, 32, {.interpretation = interpretation});
        const fs::path odd = Sample("odd.tif", 32, 32, {.profile = profile, .interpretation = interpretation});
        EXPECT_NE(m_folder.Read("odd.tif").find("acsp"), std::string::npos) << "it has the profile";
        EXPECT_EQ(Quarters(DecodePicture(odd, 0, nullptr)), Quarters(DecodePicture(plain, 0, nullptr)));
    }
    EXPECT_GT(
        PixelAt(DecodePicture(Sample("gray.tif", 32, 32, {.profile = profiles.gray, .interpretation = "b-w"}), 0,
                              nullptr),
                4, 4)
            .red,
        140)
        << "one that fits makes the picture brighter";
}

TEST_F(PictureDecoding, ACamerasRawFileIsDeveloped)
{
    const std::string sample = MakeDng(240, 160, 1);
    const DecodedPicture whole = DecodePicture(m_folder.Write("sample.dng", sample), 0, nullptr);
    EXPECT_EQ(whole.width, 240u);
    EXPECT_EQ(whole.height, 160u);
    ExpectQuarters(whole, Flag, 40);

    // Turned clockwise by a quarter, and at half its size or less.
    const fs::path upright = m_folder.Write("turned.dng", MakeDng(240, 160, 6));
    const DecodedPicture turned = DecodePicture(upright, 60, nullptr);
    EXPECT_EQ(turned.width, 40u);
    EXPECT_EQ(turned.height, 60u);
    ExpectQuarters(turned, {Blue, Red, White, Green}, 40);

    // The one strip of pixels begins at 0x12000 and ends behind the file, as if that had been cut short.
    std::string cut = sample;
    cut.replace(cut.find("\x11\1") + 2, 10, "\4\0\1\0\0\0\0\x20\1\0"s);
    ExpectFailure(m_folder.Write("cut.dng", cut), WINCODEC_ERR_BADIMAGE, "can't be developed");
}

TEST_F(PictureDecoding, TheResolutionIsTheFiles)
{
    for (const char *name : {"told.jpg", "told.webp", "told.avif"})
    {
        const DecodedPicture told = DecodePicture(Sample(name, 80, 40, {.dpi = 240}), 40, nullptr);
        EXPECT_NEAR(told.dpiX, 240, 0.5) << name;
        EXPECT_NEAR(told.dpiY, 240, 0.5) << name;
    }
    for (const char *name : {"untold.png", "untold.avif"})
    {
        EXPECT_EQ(DecodePicture(Sample(name, 8, 8, {.saver = "[strip]"}), 0, nullptr).dpiX, 0) << name;
    }
}

TEST_F(PictureDecoding, WhatIsNoRawFileFailsWithCodeAndWords)
{
    for (const std::string &bytes : {"II*\0\x08\0\0\0\0\0\0\0\0\0"s, std::string(5000, '\x33')})
    {
        ExpectFailure(m_folder.Write("unknown.nef", bytes), WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "raw");
    }
}
