// Colours that a file tells by its EXIF block alone, without a profile.
#pragma once

#include <string_view>

// Adobe RGB is told by the optional colour space of DCF 2.0: "uncalibrated" and the interoperability index R03.
// Some cameras write a colour space of 2 instead, which EXIF doesn't know.
inline constexpr unsigned UncalibratedColorSpace = 65535;
inline constexpr char AdobeRgbIndex[] = "R03";

constexpr bool IsAdobeRgb(long colorSpace, std::string_view interoperabilityIndex)
{
    return colorSpace == 2 ||
           (colorSpace == UncalibratedColorSpace && interoperabilityIndex.starts_with(AdobeRgbIndex));
}
