// The imaging component, put in place for as long as this lives. It knows a file by its first bytes, and
// leaves the stream behind them: "\xFF\xD8" JPEG, "GIF8", "\x89PNG", and "BM", an image that the service
// doesn't take; anything else has no decoder. Its JPEG codec sees in every JPEG the same frame and writes
// the same bytes for every picture.
//
// The calls of factory, decoder ("Decoder."), frame ("Source."), encoder ("Encoder."), its frame
// ("Frame."), option bag, block writer and query writer ("Metadata.") are in Calls; the decoder of the
// vendor other than Microsoft and its frame are "Other decoder." and "Other source.".
#pragma once

#include "tests/doubles/CallScript.h"
#include "tests/doubles/ClassInPlace.h"

#include <windows.h>
#include <wincodec.h>

#include <string>
#include <string_view>

class FakeImaging
{
public:
    FakeImaging();

    CallScript Calls;

    // What every picture is like, and how many profiles the two kinds of frame tell of.
    UINT Width = 800;
    UINT Height = 600;
    double DpiX = 96;
    double DpiY = 96;
    UINT ProfileCount = 1;
    UINT OtherProfileCount = 1;
    bool HasBlocks = true;

    // A picture as a host gives it.
    ComPtr<IWICBitmapSource> MakePicture();

    static constexpr std::string_view EncodedBytes = "\xFF\xD8\xFF\xE1 written by the encoder";

private:
    ClassInPlace m_factory;
};
