#include "platform/windowscodecs/jpeg/ColorProfile.h"

#include <lcms2.h>

bool IsColorProfile(const Bytes &profile) noexcept
{
    if (profile.size() < 128)
    {
        return false;
    }
    const cmsContext context = cmsCreateContext(nullptr, nullptr);
    const cmsHPROFILE handle =
        cmsOpenProfileFromMemTHR(context, profile.data(), static_cast<cmsUInt32Number>(profile.size()));
    if (handle != nullptr)
    {
        cmsCloseProfile(handle);
    }
    cmsDeleteContext(context);
    return handle != nullptr;
}
