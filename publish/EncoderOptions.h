// Quality and chroma subsampling of a new JPEG.
#pragma once

#include <windows.h>
#include <ocidl.h>

// Sets both in the option bag of a new frame: for good looks, or with minimize for few bytes. Without
// withSubsampling the encoder keeps its own choice of subsampling. The bag's failure is thrown.
void WriteEncoderOptions(IPropertyBag2 *bag, bool minimize, bool withSubsampling);
