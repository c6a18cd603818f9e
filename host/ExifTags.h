// Numbers of EXIF: those of its fields, in whichever directory each lies (EXIF 2.32, 4.6; those for texts of Windows
// and the rating by Microsoft), and those for colours that a file tells by this block alone, without a profile.
#pragma once

#include <windows.h>

#include <string_view>

namespace ExifTag
{
constexpr WORD InteroperabilityIndex = 1;
constexpr WORD ImageDescription = 270;
constexpr WORD Orientation = 274;
constexpr WORD Artist = 315;
constexpr WORD Rating = 18246;
constexpr WORD Copyright = 33432;
constexpr WORD MakerNote = 37500;
constexpr WORD UserComment = 37510;
constexpr WORD XPTitle = 40091;
constexpr WORD XPComment = 40092;
constexpr WORD XPAuthor = 40093;
constexpr WORD XPKeywords = 40094;
constexpr WORD ColorSpace = 40961;
constexpr WORD PixelXDimension = 40962;
constexpr WORD PixelYDimension = 40963;
} // namespace ExifTag

// EXIF's numbers, 1 to 8; what is none of them stands for an upright picture.
constexpr UINT16 ValidOrientation(long number)
{
    return static_cast<UINT16>(number >= 1 && number <= 8 ? number : 1);
}

// Adobe RGB is told by the optional colour space of DCF 2.0: "uncalibrated" and the interoperability index R03.
// Some cameras write a colour space of 2 instead, which EXIF doesn't know.
inline constexpr unsigned UncalibratedColorSpace = 65535;
inline constexpr char AdobeRgbIndex[] = "R03";

constexpr bool IsAdobeRgb(long colorSpace, std::string_view interoperabilityIndex)
{
    return colorSpace == 2 ||
           (colorSpace == UncalibratedColorSpace && interoperabilityIndex.starts_with(AdobeRgbIndex));
}
