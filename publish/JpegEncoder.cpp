#include "publish/JpegEncoder.h"

#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/WideText.h"

#include <objbase.h>
#include <oleauto.h>
#include <shlwapi.h>

#include <cmath>

namespace
{
// For a size without a resolution: the 72 dpi of a screen, as printing programs assume it.
constexpr double ScreenDpi = 72.0;

const WCHAR *const ImagingServerKey = TEXT("CLSID\\{CACAF262-9370-4615-A13B-9F5539DA4C0A}\\InProcServer32");

bool FindOut() noexcept
{
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const bool isKnown = GetVersionExW(&version);
    return (isKnown && VersionHasJpegSubsampling(version.dwMajorVersion, version.dwMinorVersion)) ||
           IsFreeThreaded(HKEY_CLASSES_ROOT, ImagingServerKey);
}
} // namespace

JpegEncoder CreateJpegEncoder(IWICImagingFactory *factory, const UploadOptions &options)
{
    const bool isIntact = options.Mode == SendPixelsIntact;
    JpegEncoder encoder;
    ThrowIfFailed(
        factory->CreateEncoder(GUID_ContainerFormatJpeg, &GUID_VendorMicrosoft, encoder.Container.Put()));
    ThrowIfFailed(CreateStreamOnHGlobal(nullptr, TRUE, encoder.Picture.Put()));
    ThrowIfFailed(encoder.Container->Initialize(encoder.Picture.Get(), WICBitmapEncoderNoCache));
    // Without options the encoder may copy the source's coded pixels; any option makes it encode anew.
    ComPtr<IPropertyBag2> bag;
    ThrowIfFailed(encoder.Container->CreateNewFrame(encoder.Frame.Put(), isIntact ? nullptr : bag.Put()));
    if (!isIntact)
    {
        WriteEncoderOptions(bag.Get(), options.Minimize != 0, JpegSubsamplingSupported());
    }
    ThrowIfFailed(encoder.Frame->Initialize(bag.Get()));
    return encoder;
}

void DescribeFrame(IWICBitmapFrameEncode *frame, IWICBitmapSource *picture, const UploadOptions &options,
                   ItemRecord &record)
{
    UINT width = 0;
    UINT height = 0;
    ThrowIfFailed(picture->GetSize(&width, &height));
    record.Widths[0] = record.Widths[1] = width;
    record.Heights[0] = record.Heights[1] = height;
    ThrowIfFailed(frame->SetSize(width, height));

    const Resolution resolution = ChooseResolution(options, picture);
    record.ResolutionX = static_cast<float>(resolution.X);
    record.ResolutionY = static_cast<float>(resolution.Y);
    ThrowIfFailed(frame->SetResolution(resolution.X, resolution.Y));

    // The encoder may answer with another format: WriteSource converts to it.
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    ThrowIfFailed(frame->SetPixelFormat(&format));
}

void WriteEncoderOptions(IPropertyBag2 *bag, bool minimize, bool withSubsampling)
{
    // Arrays, since PROPBAG2 takes no const text; the bag doesn't write to them.
    WCHAR qualityName[] = TEXT("ImageQuality");
    WCHAR subsamplingName[] = TEXT("JpegYCrCbSubsampling");
    PROPBAG2 options[2] = {};
    VARIANT values[2];

    options[0].dwType = PROPBAG2_TYPE_DATA;
    options[0].vt = VT_R4;
    options[0].pstrName = qualityName;
    VariantInit(&values[0]);
    V_VT(&values[0]) = VT_R4;
    V_R4(&values[0]) = minimize ? 0.75f : 0.85f;

    options[1].dwType = PROPBAG2_TYPE_DATA;
    options[1].vt = VT_UI1;
    options[1].pstrName = subsamplingName;
    VariantInit(&values[1]);
    V_VT(&values[1]) = VT_UI1;
    V_UI1(&values[1]) = minimize ? WICJpegYCrCbSubsampling420 : WICJpegYCrCbSubsampling444;

    ThrowIfFailed(bag->Write(withSubsampling ? 2 : 1, options, values));
}

Resolution ChooseResolution(const UploadOptions &options, IWICBitmapSource *source)
{
    const double wanted = options.PrintDpi != 0.0 ? std::fabs(options.PrintDpi) : ScreenDpi;
    if (options.Mode == SendProcessed && options.LongEdgePixels != 0)
    {
        return {wanted, wanted};
    }
    Resolution own{};
    ThrowIfFailed(source->GetResolution(&own.X, &own.Y));
    return own.X >= 1.0 && own.Y >= 1.0 ? own : Resolution{wanted, wanted};
}

bool JpegSubsamplingSupported()
{
    static const bool Answer = FindOut();
    return Answer;
}

bool VersionHasJpegSubsampling(DWORD major, DWORD minor) noexcept
{
    return major > 6 || (major == 6 && minor != 0);
}

bool IsFreeThreaded(HKEY root, const WCHAR *serverKey) noexcept
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(root, serverKey, 0, KEY_QUERY_VALUE, key.Put()) != ERROR_SUCCESS)
    {
        return false;
    }
    // The last unit stays zero, since a stored text may lack its terminator. A text too long for the buffer is
    // neither of the two.
    WCHAR model[16] = {};
    DWORD type = REG_NONE;
    DWORD size = sizeof model - sizeof(WCHAR);
    const LSTATUS read = RegQueryValueExW(key.Get(), TEXT("ThreadingModel"), nullptr, &type,
                                          reinterpret_cast<BYTE *>(model), &size);
    if (read != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
    {
        return false;
    }
    return StrCmpIW(model, TEXT("Both")) == 0 || StrCmpIW(model, TEXT("Free")) == 0;
}
