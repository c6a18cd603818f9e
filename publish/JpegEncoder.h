// The new JPEG file that a picture is written to: in memory, by the imaging component's encoder.
#pragma once

#include "com/ComPtr.h"
#include "publish/UploadOptions.h"

#include "HostContract.h"

#include <windows.h>
#include <ocidl.h>
#include <wincodec.h>

struct JpegEncoder
{
    ComPtr<IStream> Picture; // the file, complete once frame and container are committed
    ComPtr<IWICBitmapEncoder> Container;
    ComPtr<IWICBitmapFrameEncode> Frame;
};

// An encoder with one new frame, which is initialized. Failures are thrown.
JpegEncoder CreateJpegEncoder(IWICImagingFactory *factory, const UploadOptions &options);

// Gives the frame the size of the picture, its resolution and a pixel format, and tells the host's writer of
// metadata the first two by the record. Failures are thrown.
void DescribeFrame(IWICBitmapFrameEncode *frame, IWICBitmapSource *picture, const UploadOptions &options,
                   ItemRecord &record);

// Sets quality and chroma subsampling in the option bag of a new frame: for good looks, or with minimize for
// few bytes. Without withSubsampling the encoder keeps its own choice of subsampling. The bag's failure is
// thrown.
void WriteEncoderOptions(IPropertyBag2 *bag, bool minimize, bool withSubsampling);

// Dots per inch.
struct Resolution
{
    double X;
    double Y;
};

// Where a size is wanted, the resolution that was set with it; else the source's own, unless it has none (an
// axis below 1.0). The failure to read the source's is thrown.
Resolution ChooseResolution(const UploadOptions &options, IWICBitmapSource *source);

// Whether the system's JPEG encoder knows the option "JpegYCrCbSubsampling". The answer is found at the first call, on
// any thread, and kept for the process.
bool JpegSubsamplingSupported();

// The option came with version 6.1 of Windows. An earlier one has it with an update that also made the imaging
// component free-threaded: its threading model shows whether the update is there.
bool VersionHasJpegSubsampling(DWORD major, DWORD minor) noexcept;

// Whether a component's InProcServer32 key names a threading model for calls from any thread: "Both" or
// "Free", in any case and as text. False for a key that can't be read.
bool IsFreeThreaded(HKEY root, const WCHAR *serverKey) noexcept;
