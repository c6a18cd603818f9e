// A fake of the imaging component, registered while this object lives. It recognizes a file by its first
// bytes, and leaves the stream after them: "\xFF\xD8" JPEG, "GIF8", "\x89PNG", and "BM", an image that the
// service doesn't take; anything else has no decoder. Its JPEG codec decodes the same frame from every JPEG
// and writes the same bytes for every picture.
//
// Calls holds the calls of factory, decoder ("Decoder."), frame ("Source."), encoder ("Encoder."), its frame
// ("Frame."), option bag, block writer and query writer ("Metadata."); those of a decoder of another vendor
// than Microsoft and of its frame are "Other decoder." and "Other source.".
#pragma once

#include "com/ComPtr.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/ClassInPlace.h"

#include <ocidl.h>
#include <wincodec.h>

#include <string>
#include <string_view>

class FakeImaging
{
public:
    FakeImaging();

    CallRecord Calls;

    // Size and resolution of every picture, and the number of profiles of the two kinds of frame.
    UINT Width = 800;
    UINT Height = 600;
    double DpiX = 96;
    double DpiY = 96;
    UINT ProfileCount = 1;
    UINT OtherProfileCount = 1;
    bool HasBlocks = true;

    // A picture as a host decodes it.
    ComPtr<IWICBitmapSource> MakePicture();

    static constexpr std::string_view EncodedBytes = "\xFF\xD8\xFF\xE1 written by the encoder";

private:
    ClassInPlace m_factory;
};

// The parts, which record their calls in its Calls. A decoder is of one container, and puts prefix, "" or "Other ",
// before the names of its calls.
ComPtr<IWICBitmapDecoder> MakeFakeDecoder(FakeImaging &imaging, const std::string &prefix, const GUID &format);
ComPtr<IWICBitmapEncoder> MakeFakeEncoder(FakeImaging &imaging);
ComPtr<IPropertyBag2> MakeFakeOptionBag(FakeImaging &imaging);
HRESULT MakeFakeBlocks(FakeImaging &imaging, REFIID iid, void **object);

// The container of a stream by its first bytes; null if it is unknown.
const GUID *ContainerOf(IStream *stream);

// "frame", "other frame", "picture" for those of the fakes, else "?".
std::string NameOfSource(IUnknown *source);
