// The JPEG encoder's options, "ImageQuality" (VT_R4, 0 to 1) and "JpegYCrCbSubsampling" (VT_UI1), as
// a property bag.
#pragma once

#include "com/ComPtr.h"

#include <windows.h>
#include <ocidl.h>
#include <wincodec.h>

#include <optional>

struct EncoderOptions
{
    std::optional<float> Quality;
    std::optional<BYTE> Subsampling;

    bool AreGiven() const noexcept { return Quality || Subsampling; }
};

// A new bag, in which nothing is given.
ComPtr<IPropertyBag2> MakeOptionBag();

// Any bag's options; a null bag gives none. Throws E_INVALIDARG for a value out of range.
EncoderOptions ReadOptions(IPropertyBag2 *bag);
