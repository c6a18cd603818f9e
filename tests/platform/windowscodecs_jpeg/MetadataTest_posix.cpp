// Blocks that no camera writes.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include <gtest/gtest.h>

TEST(ExifBlock, NestsNoDeeperThanItsDirectoriesDo)
{
    // Each directory holds nothing but the next one, and the last a text.
    constexpr int depth = 4000;
    std::string block = "II*";
    const auto put = [&](unsigned value, int bytes) {
        for (; bytes > 0; --bytes, value >>= 8)
        {
            block += static_cast<char>(value & 0xFF);
        }
    };
    put(0, 1);
    put(8, 4);
    for (unsigned i = 0; i < depth; ++i)
    {
        put(1, 2);
        put(0x8769, 2);
        put(4, 2);
        put(1, 4);
        put(static_cast<unsigned>(block.size()) + 4, 4);
    }
    put(1, 2);
    put(271, 2);
    put(2, 2);
    put(4, 4);
    block += "sec";
    put(0, 5);
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(MakeJpeg({.Markers = {{0xE1, std::string("Exif\0\0", 6) + block}}}), {}, result));
    EXPECT_FALSE(Holds(result, "sec"));
    EXPECT_LT(result.size(), 10000u);
}

TEST(Metadata, OfTwentyMegabytesStaysBehind)
{
    SampleOptions options;
    for (int i = 0; i < 320; ++i)
    {
        options.Markers.push_back({0xE5, std::string(65000, 'p')});
    }
    const Octets source = MakeJpeg(options);
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(source, {}, result));
    EXPECT_LT(result.size(), 100000u);
    EXPECT_EQ(DecodeJpeg(source), DecodeJpeg(result));
}
