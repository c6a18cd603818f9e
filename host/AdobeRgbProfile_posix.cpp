#include "host/AdobeRgbProfile_posix.h"

#include <lcms2.h>

#include <memory>

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
        const std::unique_ptr<void, cmsBool (*)(void *)> profile(cmsCreateRGBProfile(&white, &primaries, curves),
                                                                 cmsCloseProfile);
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
