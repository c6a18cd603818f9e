// Dots per inch of a new JPEG.
#pragma once

#include "publish/UploadOptions.h"

#include <wincodec.h>

struct Resolution
{
    double X;
    double Y;
};

// Where a size is wanted, the resolution that was set with it; else the source's own, unless it has none (an
// axis below 1.0). The failure to read the source's is thrown.
Resolution ChooseResolution(const UploadOptions &options, IWICBitmapSource *source);
