#include "publish/EncoderOptions.h"

#include "com/Hresult.h"

#include <oleauto.h>
#include <wincodec.h>

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
