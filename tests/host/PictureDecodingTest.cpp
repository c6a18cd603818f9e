#include "tests/host/DamagedBytes.h"
#include "tests/host/PictureDecodingFixture.h"

#include <wincodec.h>

#include <thread>

namespace fs = std::filesystem;

TEST_F(PictureDecoding, CommonKindsComeInTheirColours)
{
    ExpectKinds({{"a.jpg", {}, 40},
                 {"a.png", {}, 0},
                 {"a.tif", {}, 0},
                 {"clear.png", {.alpha = true}, 0, {White, White, White, White}}});
}

TEST_F(PictureDecoding, EveryOrientationComesUpright)
{
    // Where the file's red, green, blue and white quarters come to lie.
    const std::array<Rgb, 4> upright[] = {
        Flag,
        {Green, Red, White, Blue},
        {White, Blue, Green, Red},
        {Blue, White, Red, Green},
        {Red, Blue, Green, White},
        {Blue, Red, White, Green},
        {White, Green, Blue, Red},
        {Green, White, Red, Blue},
    };
    for (int orientation = 1; orientation <= 8; ++orientation)
    {
        SCOPED_TRACE(orientation);
        const fs::path file = Sample("turned.tif", 40, 20, {.orientation = orientation, .dpi = 150});
        const DecodedPicture picture = DecodePicture(file, 0, nullptr);
        EXPECT_EQ(picture.width, orientation >= 5 ? 20u : 40u);
        EXPECT_EQ(picture.height, orientation >= 5 ? 40u : 20u);
        EXPECT_NEAR(picture.dpiX, 150, 0.5);
        ExpectQuarters(picture, upright[orientation - 1], 0);
        const DecodedPicture reduced = DecodePicture(file, 20, nullptr);
        EXPECT_EQ(std::max(reduced.width, reduced.height), 20u);
        EXPECT_EQ(std::min(reduced.width, reduced.height), 10u);
        ExpectQuarters(reduced, upright[orientation - 1], 3);
    }
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

TEST_F(PictureDecoding, WhatIsNoPictureFailsWithCodeAndWords)
{
    Sample("whole.png", 300, 300);
    const std::string png = m_folder.Read("whole.png");
    ExpectFailure(m_folder.Path() / "gone.jpg", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), "can't be read");
    ExpectFailure(m_folder.Write("text.jpg", "no picture at all"), WINCODEC_ERR_UNKNOWNIMAGEFORMAT,
                  "not a picture format that Halvora can read");
    ExpectFailure(m_folder.Write("cut.png", png.substr(0, png.size() / 2)), WINCODEC_ERR_BADIMAGE, "cut short");
}

TEST_F(PictureDecoding, DamageIsToldWhereverItIs)
{
    Sample("whole.jpg", 400, 300);
    const std::string whole = m_folder.Read("whole.jpg");
    for (size_t place = 0; place < 10; ++place)
    {
        SCOPED_TRACE(place);
        ExpectFailure(m_folder.Write("damaged.jpg", DamagedAt(whole, place)), WINCODEC_ERR_BADIMAGE, "is damaged");
    }
    ExpectFailure(m_folder.Write("cut.jpg", whole.substr(0, whole.size() / 2)), WINCODEC_ERR_BADIMAGE,
                  "cut short");
    // All pixels are there.
    ExpectQuarters(DecodePicture(m_folder.Write("endless.jpg", whole.substr(0, whole.size() - 2)), 0, nullptr),
                   Flag, 40);
}

TEST_F(PictureDecoding, ProportionsOfPixelsAreKeptAsAResolution)
{
    Sample("square.jpg", 40, 20, {.saver = "[strip]"});
    std::string jpeg = m_folder.Read("square.jpg");
    jpeg.insert(2, std::string("\xFF\xE0\0\x10JFIF\0\1\1\0\0\3\0\2\0\0", 18)); // no unit, three to two
    const DecodedPicture picture = DecodePicture(m_folder.Write("oblong.jpg", jpeg), 20, nullptr);
    EXPECT_EQ(picture.width, 20u);
    EXPECT_EQ(picture.height, 10u);
    EXPECT_EQ(picture.dpiX, 144);
    EXPECT_EQ(picture.dpiY, 96);
}

TEST_F(PictureDecoding, AThreadWithoutComMayDecode)
{
    const fs::path file = Sample("a.png", 8, 8);
    UINT width = 0;
    std::thread([&] { width = DecodePicture(file, 0, nullptr).width; }).join();
    EXPECT_EQ(width, 8u);
}

TEST_F(PictureDecoding, ARequestToStopEndsIt)
{
    const std::atomic<bool> stop = true;
    const fs::path file = Sample("large.png", 2000, 2000);
    EXPECT_THROW(DecodePicture(file, 0, &stop), DecodingError);
}
