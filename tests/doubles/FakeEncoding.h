// The writing half of FakeImaging.
#pragma once

#include "com/ComPtr.h"
#include "tests/doubles/FakeImaging.h"

#include <ocidl.h>
#include <wincodec.h>

ComPtr<IWICBitmapEncoder> MakeFakeEncoder(FakeImaging &imaging);

// The option bag that comes with a new frame.
ComPtr<IPropertyBag2> MakeFakeOptionBag(FakeImaging &imaging);
