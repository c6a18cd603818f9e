// Dots per inch of a new JPEG.
#pragma once

#include "publish/UploadOptions.h"

#include <wincodec.h>

struct Resolution
{
    double X;
    double Y;
};

// The resolution that goes with the wanted size where a size is wanted, and else the source's own, unless
// that is no resolution at all (an axis below 1.0). The source's failure to tell is thrown.
Resolution ChooseResolution(const UploadOptions &options, IWICBitmapSource *source);
