#include "host/PictureDecoding.h"
#include "host/PictureSource.h"

#include "tests/host/SampleDng.h"
#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <zlib.h>

#include <cmath>
#include <cstdlib>

namespace fs = std::filesystem;
using testing::HasSubstr;
using namespace std::string_literals;

namespace
{
constexpr Rgb RED = {255, 0, 0};
constexpr Rgb GREEN = {0, 255, 0};
constexpr Rgb BLUE = {0, 0, 255};
constexpr Rgb WHITE = {255, 255, 255};

Rgb PixelAt(const DecodedPicture &picture, UINT x, UINT y)
{
    const BYTE *pixel = picture.pixels.data() + y * picture.RowBytes() + x * 3;
    return {pixel[2], pixel[1], pixel[0]};
}

int Distance(const Rgb &a, const Rgb &b)
{
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

// Colours in the middle of the quarters, row by row.
std::array<Rgb, 4> Quarters(const DecodedPicture &picture)
{
    const UINT right = picture.width * 3 / 4;
    const UINT below = picture.height * 3 / 4;
    return {PixelAt(picture, picture.width / 4, picture.height / 4), PixelAt(picture, right, picture.height / 4),
            PixelAt(picture, picture.width / 4, below), PixelAt(picture, right, below)};
}

void ExpectQuarters(const DecodedPicture &picture, const std::array<Rgb, 4> &colours, int tolerance)
{
    const auto found = Quarters(picture);
    for (size_t i = 0; i < 4; ++i)
    {
        EXPECT_LE(Distance(found[i], colours[i]), tolerance)
            << "quarter " << i << ": " << found[i].red << " " << found[i].green << " " << found[i].blue;
    }
}

class PictureDecoding : public testing::Test
{
protected:
    fs::path Sample(const char *name, int width, int height, const PictureOptions &options = {})
    {
        const fs::path file = m_folder.Path() / name;
        MakeSample(file, width, height, options);
        return file;
    }

    static std::pair<HRESULT, std::string> FailureOf(const fs::path &file)
    {
        try
        {
            DecodePicture(file, 0, nullptr);
        }
        catch (const DecodingError &error)
        {
            return {error.Code(), error.what()};
        }
        return {S_OK, "decoded"};
    }

    TemporaryFolder m_folder;
};
} // namespace

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
        ExpectQuarters(picture, {RED, GREEN, BLUE, WHITE}, kind.tolerance);
    }
    for (const char *name : {"cmyk.tif", "cmyk.jpg"})
    {
        const auto inks = Quarters(DecodePicture(m_folder.Path() / name, 0, nullptr));
        EXPECT_TRUE(inks[0].red > 180 && inks[0].green < 90 && inks[0].blue < 90) << name;
        // The library's own ink profile, which the file carries, prints pure green as a yellowish one.
        EXPECT_LE(Distance(inks[1], {197, 208, 18}), 10)
            << name << " " << inks[1].red << " " << inks[1].green << " " << inks[1].blue;
        EXPECT_LE(Distance(inks[3], WHITE), 6) << name;
    }
}

TEST_F(PictureDecoding, EveryOrientationComesUpright)
{
    // Where the file's red, green, blue and white quarters come to lie.
    const std::array<Rgb, 4> upright[] = {
        {RED, GREEN, BLUE, WHITE}, {GREEN, RED, WHITE, BLUE}, {WHITE, BLUE, GREEN, RED}, {BLUE, WHITE, RED, GREEN},
        {RED, BLUE, GREEN, WHITE}, {BLUE, RED, WHITE, GREEN}, {WHITE, GREEN, BLUE, RED}, {GREEN, WHITE, RED, BLUE},
    };
    for (int orientation = 1; orientation <= 8; ++orientation)
    {
        SCOPED_TRACE(orientation);
        const fs::path file = Sample("turned.tif", 40, 20, {.orientation = orientation, .dpi = 150});
        const DecodedPicture picture = DecodePicture(file, 0, nullptr);
        EXPECT_EQ(picture.width, orientation >= 5 ? 20u : 40u);
        EXPECT_EQ(picture.height, orientation >= 5 ? 40u : 20u);
        ExpectQuarters(picture, upright[orientation - 1], 0);
        const DecodedPicture reduced = DecodePicture(file, 20, nullptr);
        EXPECT_EQ(std::max(reduced.width, reduced.height), 20u);
        EXPECT_EQ(std::min(reduced.width, reduced.height), 10u);
        ExpectQuarters(reduced, upright[orientation - 1], 3);
    }
}

TEST_F(PictureDecoding, ColoursAreConvertedFromTheFilesProfile)
{
    const std::string exchanged = MakeExchangedProfile(m_folder.Path()).string();
    for (const PictureOptions &options :
         {PictureOptions{.profile = exchanged}, PictureOptions{.profile = exchanged, .interpretation = "rgb16"}})
    {
        const fs::path file = Sample("exchanged.png", 64, 64, options);
        ExpectQuarters(DecodePicture(file, 0, nullptr), {GREEN, RED, BLUE, WHITE}, 3);
        ExpectQuarters(DecodePicture(file, 32, nullptr), {GREEN, RED, BLUE, WHITE}, 3);
    }
    const fs::path jpeg = Sample("exchanged.jpg", 64, 64, {.saver = "[Q=100,subsample-mode=off]", .profile = exchanged});
    ExpectQuarters(DecodePicture(jpeg, 16, nullptr), {GREEN, RED, BLUE, WHITE}, 4);
}

TEST_F(PictureDecoding, ADamagedProfileCountsAsNone)
{
    const fs::path exchanged = MakeExchangedProfile(m_folder.Path());
    Sample("broken.jpg", 32, 32, {.saver = "[Q=100,subsample-mode=off]", .profile = exchanged.string()});
    std::string bytes = m_folder.Read("broken.jpg");
    const size_t profile = bytes.find("ICC_PROFILE");
    ASSERT_NE(profile, bytes.npos);
    bytes.replace(profile + 14, 200, 200, '\x7F');
    ExpectQuarters(DecodePicture(m_folder.Write("broken.jpg", bytes), 0, nullptr), {RED, GREEN, BLUE, WHITE}, 3);
}

TEST_F(PictureDecoding, AlphaLiesOnWhite)
{
    ExpectQuarters(DecodePicture(Sample("clear.png", 16, 16, {.alpha = true}), 0, nullptr), {WHITE, WHITE, WHITE, WHITE},
                   0);
}

TEST_F(PictureDecoding, AnAnimationGivesItsFirstPicture)
{
    MakeAnimation(m_folder.Path() / "moving.gif");
    const DecodedPicture picture = DecodePicture(m_folder.Path() / "moving.gif", 0, nullptr);
    EXPECT_EQ(picture.height, 10u);
    ExpectQuarters(picture, {RED, RED, RED, RED}, 0);
}

TEST_F(PictureDecoding, ACamerasRawFileIsDeveloped)
{
    const std::string sample = MakeDng(240, 160, 1);
    const DecodedPicture whole = DecodePicture(m_folder.Write("sample.dng", sample), 0, nullptr);
    EXPECT_EQ(whole.width, 240u);
    EXPECT_EQ(whole.height, 160u);
    ExpectQuarters(whole, {RED, GREEN, BLUE, WHITE}, 40);

    // Turned clockwise by a quarter, and at half its size or less.
    const fs::path upright = m_folder.Write("turned.dng", MakeDng(240, 160, 6));
    const DecodedPicture turned = DecodePicture(upright, 60, nullptr);
    EXPECT_EQ(turned.width, 40u);
    EXPECT_EQ(turned.height, 60u);
    ExpectQuarters(turned, {BLUE, RED, WHITE, GREEN}, 40);

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
    ExpectQuarters(DecodePicture(file, 0, nullptr), {RED, GREEN, BLUE, WHITE}, 30);
}

TEST_F(PictureDecoding, TheLongEdgeIsKeptAndNothingIsEnlarged)
{
    const fs::path file = Sample("large.jpg", 400, 300);
    const struct
    {
        UINT edge;
        UINT width;
        UINT height;
    } cases[] = {{0, 400, 300}, {400, 400, 300}, {401, 400, 300}, {200, 200, 150}, {33, 33, 25}, {1, 1, 1}};
    for (const auto &each : cases)
    {
        const DecodedPicture picture = DecodePicture(file, each.edge, nullptr);
        EXPECT_EQ(picture.width, each.width) << each.edge;
        EXPECT_EQ(picture.height, each.height) << each.edge;
    }
    const DecodedPicture panorama = DecodePicture(Sample("wide.tif", 65500, 2), 1000, nullptr);
    EXPECT_EQ(panorama.width, 1000u);
    EXPECT_EQ(panorama.height, 1u);
}

TEST_F(PictureDecoding, TheResolutionIsTheFiles)
{
    const DecodedPicture told = DecodePicture(Sample("told.jpg", 80, 40, {.dpi = 240}), 40, nullptr);
    EXPECT_NEAR(told.dpiX, 240, 0.5);
    EXPECT_NEAR(told.dpiY, 240, 0.5);
    EXPECT_EQ(DecodePicture(Sample("untold.png", 8, 8, {.saver = "[strip]"}), 0, nullptr).dpiX, 0);
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
    Sample("whole.png", 300, 300);
    Sample("bomb.png", 64, 64);
    const std::string jpeg = m_folder.Read("whole.jpg");
    const std::string png = m_folder.Read("whole.png");
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
        {m_folder.Path() / "gone.jpg", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), "can't be read"},
        {m_folder.Write("text.jpg", "no picture at all"), WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "no kind of picture"},
        {m_folder.Write("cut.jpg", jpeg.substr(0, jpeg.size() / 2)), WINCODEC_ERR_BADIMAGE, "cut short"},
        {m_folder.Write("cut.png", png.substr(0, png.size() / 2)), WINCODEC_ERR_BADIMAGE, "cut short"},
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

TEST_F(PictureDecoding, ARequestToStopEndsIt)
{
    const std::atomic<bool> stop = true;
    const fs::path file = Sample("large.png", 2000, 2000);
    EXPECT_THROW(DecodePicture(file, 0, &stop), DecodingError);
}

TEST(PictureSourceTest, GivesPartsAndRefusesWhatLiesOutside)
{
    auto picture = std::make_shared<DecodedPicture>();
    *picture = {3, 2, 300, 200, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}};
    const auto source = MakePictureSource(picture);
    double x = 0;
    double y = 0;
    EXPECT_EQ(source->GetResolution(&x, &y), S_OK);
    EXPECT_EQ(x, 300);
    EXPECT_EQ(y, 200);
    WICPixelFormatGUID format = {};
    EXPECT_EQ(source->GetPixelFormat(&format), S_OK);
    EXPECT_TRUE(format == GUID_WICPixelFormat24bppBGR);
    BYTE buffer[16] = {};
    const WICRect part = {1, 0, 2, 2};
    EXPECT_EQ(source->CopyPixels(&part, 8, sizeof(buffer), buffer), S_OK);
    EXPECT_THAT(buffer, testing::ElementsAre(4, 5, 6, 7, 8, 9, 0, 0, 13, 14, 15, 16, 17, 18, 0, 0));
    EXPECT_EQ(source->CopyPixels(&part, 8, 13, buffer), WINCODEC_ERR_INSUFFICIENTBUFFER);
    EXPECT_EQ(source->CopyPixels(&part, 5, sizeof(buffer), buffer), E_INVALIDARG);
    for (const WICRect &outside : {WICRect{2, 0, 2, 1}, WICRect{0, 1, 1, 2}, WICRect{-1, 0, 1, 1}, WICRect{0, 0, 0, 1},
                                   WICRect{3, 0, 0x7FFFFFFF, 1}})
    {
        EXPECT_EQ(source->CopyPixels(&outside, 64, sizeof(buffer), buffer), E_INVALIDARG);
    }
}
