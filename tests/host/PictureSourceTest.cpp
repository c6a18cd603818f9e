#include "host/PictureSource.h"

#include <gmock/gmock.h>

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
    for (const WICRect &outside : {WICRect{2, 0, 2, 1}, WICRect{0, 1, 1, 2}, WICRect{-1, 0, 1, 1},
                                   WICRect{0, 0, 0, 1}, WICRect{3, 0, 0x7FFFFFFF, 1}})
    {
        EXPECT_EQ(source->CopyPixels(&outside, 64, sizeof(buffer), buffer), E_INVALIDARG);
    }
}
