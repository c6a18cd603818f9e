// Decoded pictures, compared by the colours of their quarters.
#pragma once

#include "host/PictureDecoding.h"

#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string>

inline constexpr Rgb Red = {255, 0, 0};
inline constexpr Rgb Green = {0, 255, 0};
inline constexpr Rgb Blue = {0, 0, 255};
inline constexpr Rgb White = {255, 255, 255};

inline Rgb PixelAt(const DecodedPicture &picture, UINT x, UINT y)
{
    const BYTE *pixel = picture.pixels.data() + y * picture.RowBytes() + x * 3;
    return {pixel[2], pixel[1], pixel[0]};
}

inline int Distance(const Rgb &a, const Rgb &b)
{
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

// Colours in the middle of the quarters, row by row.
inline std::array<Rgb, 4> Quarters(const DecodedPicture &picture)
{
    const UINT right = picture.width * 3 / 4;
    const UINT below = picture.height * 3 / 4;
    return {PixelAt(picture, picture.width / 4, picture.height / 4), PixelAt(picture, right, picture.height / 4),
            PixelAt(picture, picture.width / 4, below), PixelAt(picture, right, below)};
}

inline void ExpectQuarters(const DecodedPicture &picture, const std::array<Rgb, 4> &colours, int tolerance)
{
    const auto found = Quarters(picture);
    for (size_t i = 0; i < 4; ++i)
    {
        EXPECT_LE(Distance(found[i], colours[i]), tolerance)
            << "quarter " << i << ": " << found[i].red << " " << found[i].green << " " << found[i].blue;
    }
}

inline constexpr std::array<Rgb, 4> Flag = {Red, Green, Blue, White};

class PictureDecoding : public testing::Test
{
protected:
    struct Kind
    {
        const char *name;
        PictureOptions options;
        int tolerance;
        std::array<Rgb, 4> colours = Flag;
    };

    void ExpectKinds(std::initializer_list<Kind> kinds)
    {
        for (const Kind &kind : kinds)
        {
            SCOPED_TRACE(kind.name);
            const DecodedPicture picture = DecodePicture(Sample(kind.name, 48, 32, kind.options), 0, nullptr);
            ASSERT_EQ(picture.width, 48u);
            ASSERT_EQ(picture.height, 32u);
            ExpectQuarters(picture, kind.colours, kind.tolerance);
        }
    }

    std::filesystem::path Sample(const char *name, int width, int height, const PictureOptions &options = {})
    {
        const std::filesystem::path file = m_folder.Path() / name;
        MakeSample(file, width, height, options);
        return file;
    }

    static void ExpectFailure(const std::filesystem::path &file, HRESULT code, const char *words)
    {
        SCOPED_TRACE(file);
        try
        {
            DecodePicture(file, 0, nullptr);
            FAIL() << "decoded";
        }
        catch (const DecodingError &error)
        {
            EXPECT_EQ(error.Code(), code);
            EXPECT_THAT(error.what(), testing::HasSubstr(words));
        }
    }

    TemporaryFolder m_folder;
};
