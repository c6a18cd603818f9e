#include "host/ColourProfile_posix.h"

#include <lcms2.h>

#include <memory>

namespace
{
template <auto Free>
struct FreeBy
{
    void operator()(void *object) const noexcept { Free(object); }
};

template <auto Free>
using Owner = std::unique_ptr<void, FreeBy<Free>>;

struct Kind
{
    cmsColorSpaceSignature space;
    cmsUInt32Number format;
};

Kind KindOf(ColourKind kind)
{
    switch (kind)
    {
    case ColourKind::Gray:
        return {cmsSigGrayData, TYPE_GRAY_16};
    case ColourKind::Ink:
        return {cmsSigCmykData, TYPE_CMYK_16};
    default:
        return {cmsSigRgbData, TYPE_RGB_16};
    }
}
} // namespace

std::optional<ProfileIntent> IntentFor(std::string_view profile, ColourKind kind)
{
    const auto [space, format] = KindOf(kind);
    const Owner<cmsCloseProfile> file(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())));
    if (!file || cmsGetColorSpace(file.get()) != space)
    {
        return std::nullopt;
    }
    const Owner<cmsCloseProfile> screen(cmsCreate_sRGBProfile());
    for (const ProfileIntent intent : {ProfileIntent::RelativeColorimetric, ProfileIntent::Perceptual})
    {
        const auto number = static_cast<cmsUInt32Number>(intent);
        const Owner<cmsDeleteTransform> conversion(
            cmsCreateTransform(file.get(), format, screen.get(), TYPE_RGB_16, number, cmsFLAGS_NOOPTIMIZE));
        if (conversion && cmsIsIntentSupported(file.get(), number, LCMS_USED_AS_INPUT))
        {
            return intent;
        }
    }
    return std::nullopt;
}
