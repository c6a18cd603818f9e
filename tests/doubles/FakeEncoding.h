// The writing half of FakeImaging.
#pragma once

#include "com/ComPtr.h"
#include "tests/doubles/FakeImaging.h"

#include <ocidl.h>
#include <wincodec.h>

ComPtr<IWICBitmapEncoder> MakeFakeEncoder(FakeImaging &imaging);

// As a new frame comes with it.
ComPtr<IPropertyBag2> MakeFakeOptionBag(FakeImaging &imaging);
