#include "host/ExifFields.h"

#include <gtest/gtest.h>

TEST(ExifFieldValue, EveryTypeComesBackAsItWent)
{
    const struct
    {
        WORD type;
        std::vector<BYTE> data;
        VARTYPE variant;
    } cases[] = {
        {1, {7}, VT_UI1},
        {1, {7, 8, 9}, VT_VECTOR | VT_UI1},
        {2, {'A', 'b', 0}, VT_LPSTR},
        {3, {1, 2}, VT_UI2},
        {3, {1, 2, 3, 4, 5, 6}, VT_VECTOR | VT_UI2},
        {4, {1, 2, 3, 4}, VT_UI4},
        {5, {1, 0, 0, 0, 60, 0, 0, 0}, VT_UI8},
        {5, std::vector<BYTE>(24, 3), VT_VECTOR | VT_UI8},
        {7, {0, 1, 0}, VT_BLOB},
        {8, {0xFF, 0xFF}, VT_I2},
        {9, {1, 2, 3, 0xFF}, VT_I4},
        {10, {0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0}, VT_I8},
        {12, std::vector<BYTE>(8, 1), VT_R8},
    };
    for (const auto &each : cases)
    {
        SCOPED_TRACE(each.type);
        const ExifField field{ExifField::Directory::Exif, 1, each.type, each.data};
        const ExifFieldValue value(field);
        EXPECT_EQ(value.Get().vt, each.variant);
        ExifField back{ExifField::Directory::Exif, 1, 0, {}};
        ASSERT_TRUE(PutValue(value.Get(), back));
        EXPECT_EQ(back.type, each.type);
        EXPECT_EQ(back.data, each.data);
    }
}

TEST(ExifFieldValue, WhatIsNoFieldHasNoValue)
{
    const ExifField fields[] = {
        {ExifField::Directory::Exif, 1, 5, {1, 2, 3, 4}}, // half of a rational
        {ExifField::Directory::Exif, 1, 3, {}},
        {ExifField::Directory::Exif, 1, 13, {1, 2, 3, 4}},
        {ExifField::Directory::Exif, 1, 0, {1}},
    };
    for (const ExifField &field : fields)
    {
        EXPECT_EQ(ExifFieldValue(field).Get().vt, VT_EMPTY) << field.type;
    }
    PROPVARIANT block = {};
    block.vt = VT_UNKNOWN;
    ExifField field{};
    EXPECT_FALSE(PutValue(block, field));
    block.vt = VT_EMPTY;
    EXPECT_FALSE(PutValue(block, field));
}
