#include "host/FrameOrientation_win32.h"

#include "host/ImageMetadata.h"

#include "com/ComPtr.h"

#include <algorithm>
#include <utility>

UINT16 OrientationOfFrame(IWICBitmapFrameDecode &frame)
{
    ComPtr<IWICMetadataQueryReader> reader;
    return SUCCEEDED(frame.GetMetadataQueryReader(reader.Put())) ? ReadFrameOrientation(*reader.Get()) : UINT16{1};
}

// The imaging component can turn pictures too, but asks for single rows, and its decoder starts from the
// beginning for each.
DecodedPicture Upright(DecodedPicture picture, UINT16 orientation)
{
    if (orientation <= 1 || orientation > 8)
    {
        return picture;
    }
    const bool swapped = orientation >= 5;
    DecodedPicture turned;
    turned.width = swapped ? picture.height : picture.width;
    turned.height = swapped ? picture.width : picture.height;
    turned.dpiX = swapped ? picture.dpiY : picture.dpiX;
    turned.dpiY = swapped ? picture.dpiX : picture.dpiY;
    turned.pixels.resize(picture.pixels.size());
    // By EXIF's table of where the first row and the first column lie.
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBelow = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    BYTE *to = turned.pixels.data();
    for (UINT y = 0; y < turned.height; ++y)
    {
        for (UINT x = 0; x < turned.width; ++x, to += 3)
        {
            const UINT column = swapped ? y : x;
            const UINT row = swapped ? x : y;
            const BYTE *const from = picture.pixels.data() +
                                     size_t{fromBelow ? picture.height - 1 - row : row} * picture.RowBytes() +
                                     size_t{fromRight ? picture.width - 1 - column : column} * 3;
            std::copy_n(from, 3, to);
        }
    }
    return turned;
}
