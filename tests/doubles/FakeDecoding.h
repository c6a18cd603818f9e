// The reading half of FakeImaging.
#pragma once

#include "com/ComPtr.h"
#include "tests/doubles/FakeImaging.h"

#include <wincodec.h>

#include <string>

// For a stream that Initialize will give it: JPEG only. prefix is put before the names of its calls: "" or
// "Other ".
ComPtr<IWICBitmapDecoder> MakeFakeDecoder(FakeImaging &imaging, const std::string &prefix);

// For a container that was recognized before.
ComPtr<IWICBitmapDecoder> MakeFakeDecoder(FakeImaging &imaging, const GUID &format);

// The container of a stream by its first bytes; null if it is unknown.
const GUID *ContainerOf(IStream *stream);

// "frame", "other frame", "picture" for those of the fakes, else "?".
std::string NameOfSource(IUnknown *source);
