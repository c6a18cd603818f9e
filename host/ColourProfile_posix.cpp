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

const std::string &AdobeRgbProfile()
{
    static const std::string Profile = [] {
        // White of 6500 kelvin, primaries and gamma of Adobe RGB (1998) Color Image Encoding, 4.3.
        constexpr cmsCIExyY white = {0.3127, 0.3290, 1};
        constexpr cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
        constexpr double gamma = 563.0 / 256;
        const std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve *)> curve(cmsBuildGamma(nullptr, gamma),
                                                                            cmsFreeToneCurve);
        cmsToneCurve *const curves[] = {curve.get(), curve.get(), curve.get()};
        const Owner<cmsCloseProfile> profile(cmsCreateRGBProfile(&white, &primaries, curves));
        cmsUInt32Number size = 0;
        if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        {
            return std::string();
        }
        std::string bytes(size, '\0');
        return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : std::string();
    }();
    return Profile;
}
