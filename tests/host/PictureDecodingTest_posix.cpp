#include "tests/host/PictureDecodingFixture.h"

#include "tests/host/SampleDng.h"

#include <gmock/gmock.h>

#include <wincodec.h>
#include <zlib.h>

namespace fs = std::filesystem;
using testing::HasSubstr;
using namespace std::string_literals;

TEST_F(PictureDecoding, EveryKindGivesTheSamePicture)
{
    const struct
    {
        const char *name;
        PictureOptions options;
        int tolerance;
    } kinds[] = {
        {"a.jpg", {.saver = "[Q=100,subsample-mode=off]"}, 3},
        {"a.png", {}, 0},
        {"a16.png", {.interpretation = "rgb16"}, 0},
        {"a.gif", {}, 0},
        {"a.tif", {}, 0},
        {"tiled.tif", {.saver = "[tile,compression=deflate]"}, 0},
        {"a16.tif", {.interpretation = "rgb16"}, 0},
        {"a.webp", {.saver = "[lossless]"}, 0},
        {"profiled.png", {.profile = "srgb"}, 1},
        // Ink can't show the pure colours of a screen.
        {"cmyk.tif", {.interpretation = "cmyk"}, 255},
        {"cmyk.jpg", {.saver = "[Q=100]", .interpretation = "cmyk"}, 255},
    };
    for (const auto &kind : kinds)
    {
        SCOPED_TRACE(kind.name);
        const DecodedPicture picture = DecodePicture(Sample(kind.name, 48, 32, kind.options), 0, nullptr);
        ASSERT_EQ(picture.width, 48u);
        ASSERT_EQ(picture.height, 32u);
        ExpectQuarters(picture, {Red, Green, Blue, White}, kind.tolerance);
    }
    for (const char *name : {"cmyk.tif", "cmyk.jpg"})
    {
        const auto inks = Quarters(DecodePicture(m_folder.Path() / name, 0, nullptr));
        EXPECT_TRUE(inks[0].red > 180 && inks[0].green < 90 && inks[0].blue < 90) << name;
        // The library's own ink profile, which the file carries, prints pure green as a yellowish one.
        EXPECT_LE(Distance(inks[1], {197, 208, 18}), 10)
            << name << " " << inks[1].red << " " << inks[1].green << " " << inks[1].blue;
        EXPECT_LE(Distance(inks[3], White), 6) << name;
    }
}

TEST_F(PictureDecoding, ColoursAreConvertedFromTheFilesProfile)
{
    const std::string exchanged = MakeExchangedProfile(m_folder.Path()).string();
    for (const PictureOptions &options :
         {PictureOptions{.profile = exchanged}, PictureOptions{.profile = exchanged, .interpretation = "rgb16"}})
    {
        const fs::path file = Sample("exchanged.png", 64, 64, options);
        ExpectQuarters(DecodePicture(file, 0, nullptr), {Green, Red, Blue, White}, 3);
        ExpectQuarters(DecodePicture(file, 32, nullptr), {Green, Red, Blue, White}, 3);
    }
    const fs::path jpeg =
        Sample("exchanged.jpg", 64, 64, {.saver = "[Q=100,subsample-mode=off]", .profile = exchanged});
    ExpectQuarters(DecodePicture(jpeg, 16, nullptr), {Green, Red, Blue, White}, 4);
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
        const std::string command =
            "exiftool -q -q -m -overwrite_original " + std::string(c.fields) + " " + file.string();
        ASSERT_EQ(std::system(command.c_str()), 0);
        // Halfway between green and white: such a green has less than no red in sRGB.
        const int red = PixelAt(DecodePicture(file, 3, nullptr), 2, 1).red;
        EXPECT_TRUE(c.isAdobe ? red < 40 : red > 90) << c.fields << c.profile << ": " << red;
    }
}

TEST_F(PictureDecoding, ADamagedProfileCountsAsNone)
{
    const fs::path exchanged = MakeExchangedProfile(m_folder.Path());
    Sample("broken.jpg", 32, 32, {.saver = "[Q=100,subsample-mode=off]", .profile = exchanged.string()});
    std::string bytes = m_folder.Read("broken.jpg");
    const size_t profile = bytes.find("ICC_PROFILE");
    ASSERT_NE(profile, bytes.npos);
    bytes.replace(profile + 14, 200, 200, '\x7F');
    ExpectQuarters(DecodePicture(m_folder.Write("broken.jpg", bytes), 0, nullptr), {Red, Green, Blue, White}, 3);
}

TEST_F(PictureDecoding, AnAnimationGivesItsFirstPicture)
{
    MakeAnimation(m_folder.Path() / "moving.gif");
    const DecodedPicture picture = DecodePicture(m_folder.Path() / "moving.gif", 0, nullptr);
    EXPECT_EQ(picture.height, 10u);
    ExpectQuarters(picture, {Red, Red, Red, Red}, 0);
}

TEST_F(PictureDecoding, ACamerasRawFileIsDeveloped)
{
    const std::string sample = MakeDng(240, 160, 1);
    const DecodedPicture whole = DecodePicture(m_folder.Write("sample.dng", sample), 0, nullptr);
    EXPECT_EQ(whole.width, 240u);
    EXPECT_EQ(whole.height, 160u);
    ExpectQuarters(whole, {Red, Green, Blue, White}, 40);

    // Turned clockwise by a quarter, and at half its size or less.
    const fs::path upright = m_folder.Write("turned.dng", MakeDng(240, 160, 6));
    const DecodedPicture turned = DecodePicture(upright, 60, nullptr);
    EXPECT_EQ(turned.width, 40u);
    EXPECT_EQ(turned.height, 60u);
    ExpectQuarters(turned, {Blue, Red, White, Green}, 40);

    const fs::path cut = m_folder.Write("cut.dng", sample.substr(0, sample.size() / 2));
    EXPECT_EQ(FailureOf(cut).first, WINCODEC_ERR_BADIMAGE);
}

TEST_F(PictureDecoding, HeifIsReadWhereTheLibraryCan)
{
    const fs::path file = m_folder.Path() / "sample.avif";
    try
    {
        MakeSample(file, 64, 32);
    }
    catch (const std::exception &missing)
    {
        GTEST_SKIP() << "no encoder makes a sample here: " << missing.what();
    }
    ExpectQuarters(DecodePicture(file, 0, nullptr), {Red, Green, Blue, White}, 30);
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

TEST_F(PictureDecoding, TheContentDecidesNotTheName)
{
    const fs::path tiff = Sample("a.tif", 16, 16);
    fs::rename(tiff, m_folder.Path() / "tiff.jpg");
    const fs::path jpeg = Sample("a.jpg", 16, 16);
    fs::copy(jpeg, m_folder.Path() / "jpeg.png");
    fs::copy(jpeg, m_folder.Path() / "jpeg.nef");
    for (const char *name : {"tiff.jpg", "jpeg.png", "jpeg.nef"})
    {
        EXPECT_EQ(DecodePicture(m_folder.Path() / name, 0, nullptr).width, 16u) << name;
    }
}

TEST_F(PictureDecoding, BadFilesFailWithCodeAndWords)
{
    Sample("whole.jpg", 300, 300, {.saver = "[Q=100]"});
    Sample("bomb.png", 64, 64);
    const std::string jpeg = m_folder.Read("whole.jpg");
    // 100,000 pixels on a side, and the header's check sum right for it.
    std::string bomb = m_folder.Read("bomb.png");
    bomb.replace(16, 8, "\x00\x01\x86\xA0\x00\x01\x86\xA0"s);
    const auto sum = static_cast<UINT32>(crc32(0, reinterpret_cast<const Bytef *>(bomb.data()) + 12, 17));
    for (int i = 0; i < 4; ++i)
    {
        bomb[29 + i] = static_cast<char>(sum >> (24 - 8 * i));
    }
    const struct
    {
        fs::path file;
        HRESULT code;
        const char *words;
    } cases[] = {
        {m_folder.Write("cut.jpg", jpeg.substr(0, jpeg.size() / 2)), WINCODEC_ERR_BADIMAGE, "cut short"},
        {m_folder.Write("unknown.nef", "II*\0\x08\0\0\0\0\0\0\0\0\0"s), WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "raw"},
        {m_folder.Write("noise.cr2", std::string(5000, '\x33')), WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "raw"},
    };
    for (const auto &each : cases)
    {
        const auto [code, words] = FailureOf(each.file);
        EXPECT_EQ(code, each.code) << each.file << ": " << words;
        EXPECT_THAT(words, HasSubstr(each.words)) << each.file;
    }
    const auto [code, words] = FailureOf(m_folder.Write("bomb.png", bomb));
    EXPECT_EQ(code, WINCODEC_ERR_IMAGESIZEOUTOFRANGE) << words;
    EXPECT_THAT(words, HasSubstr("100000 by 100000 pixels"));
}
