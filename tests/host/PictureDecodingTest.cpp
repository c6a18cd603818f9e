#include "tests/host/DamagedBytes.h"
#include "tests/host/PictureDecodingFixture.h"

#include <gmock/gmock.h>

#include <wincodec.h>

#include <thread>

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST_F(PictureDecoding, CommonKindsComeInTheirColours)
{
    const std::pair<const char *, int> kinds[] = {{"a.jpg", 40}, {"a.png", 0}, {"a.tif", 0}};
    for (const auto &[name, tolerance] : kinds)
    {
        SCOPED_TRACE(name);
        const DecodedPicture picture = DecodePicture(Sample(name, 48, 32), 0, nullptr);
        ASSERT_EQ(picture.width, 48u);
        ASSERT_EQ(picture.height, 32u);
        ExpectQuarters(picture, {Red, Green, Blue, White}, tolerance);
    }
}

TEST_F(PictureDecoding, EveryOrientationComesUpright)
{
    // Where the file's red, green, blue and white quarters come to lie.
    const std::array<Rgb, 4> upright[] = {
        {Red, Green, Blue, White}, {Green, Red, White, Blue}, {White, Blue, Green, Red}, {Blue, White, Red, Green},
        {Red, Blue, Green, White}, {Blue, Red, White, Green}, {White, Green, Blue, Red}, {Green, White, Red, Blue},
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

TEST_F(PictureDecoding, AlphaLiesOnWhite)
{
    ExpectQuarters(DecodePicture(Sample("clear.png", 16, 16, {.alpha = true}), 0, nullptr),
                   {White, White, White, White}, 0);
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
    const struct
    {
        fs::path file;
        HRESULT code;
        const char *words;
    } cases[] = {
        {m_folder.Path() / "gone.jpg", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), "can't be read"},
        {m_folder.Write("text.jpg", "no picture at all"), WINCODEC_ERR_UNKNOWNIMAGEFORMAT,
         "not a picture format that Halvora can read"},
        {m_folder.Write("cut.png", png.substr(0, png.size() / 2)), WINCODEC_ERR_BADIMAGE, "cut short"},
    };
    for (const auto &each : cases)
    {
        const auto [code, words] = FailureOf(each.file);
        EXPECT_EQ(code, each.code) << each.file << ": " << words;
        EXPECT_THAT(words, HasSubstr(each.words)) << each.file;
    }
}

TEST_F(PictureDecoding, DamageIsToldWhereverItIs)
{
    Sample("whole.jpg", 400, 300);
    const std::string whole = m_folder.Read("whole.jpg");
    for (size_t place = 0; place < 10; ++place)
    {
        const auto [code, words] = FailureOf(m_folder.Write("damaged.jpg", DamagedAt(whole, place)));
        EXPECT_EQ(code, WINCODEC_ERR_BADIMAGE) << place;
        EXPECT_THAT(words, HasSubstr("is damaged")) << place;
    }
    EXPECT_EQ(FailureOf(m_folder.Write("cut.jpg", whole.substr(0, whole.size() / 2))).first,
              WINCODEC_ERR_BADIMAGE);
    // All pixels are there.
    ExpectQuarters(DecodePicture(m_folder.Write("endless.jpg", whole.substr(0, whole.size() - 2)), 0, nullptr),
                   {Red, Green, Blue, White}, 40);
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
