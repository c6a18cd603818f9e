// Fields of EXIF: their numbers, in whichever directory each lies (EXIF 2.32, 4.6; those for texts of Windows and the
// rating by Microsoft), those for colours that a file tells by this block alone, without a profile; which of them
// belong to a snapshot, and how they pass through the imaging component's metadata queries.
#pragma once

#include "host/MetadataSnapshots.h"

#include <windows.h>
#include <objidl.h>

#include <cstddef>
#include <span>
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

struct TagRange
{
    WORD first;
    WORD last;
};

// Of the camera's group in the main and the EXIF directory, or of the place's in that of GPS.
std::span<const TagRange> SnapshotTags(ExifField::Directory directory);

// Puts fields into a snapshot: those of the lists, each once, and no more than an EXIF block can hold.
class SnapshotFields
{
public:
    explicit SnapshotFields(MetadataSnapshot &groups) : m_groups(groups) {}

    // Whether a field of that many bytes would be taken.
    bool Wants(ExifField::Directory directory, WORD tag, WORD type, size_t size) const;
    void Keep(ExifField field);

private:
    std::vector<ExifField> &GroupOf(ExifField::Directory directory) const;

    MetadataSnapshot &m_groups;
    size_t m_bytes = 0;
};

// A field as a value of a query, valid as long as the object lives and the field's data doesn't change. VT_EMPTY if the
// data doesn't fit the type.
class ExifFieldValue
{
public:
    explicit ExifFieldValue(const ExifField &field);
    ExifFieldValue(const ExifFieldValue &) = delete;
    ExifFieldValue &operator=(const ExifFieldValue &) = delete;

    const PROPVARIANT &Get() const noexcept { return m_value; }

private:
    std::vector<BYTE> m_data;
    PROPVARIANT m_value = {};
};

// Type and data of a field from the value that a query gave; returns false for a value that no field can hold.
bool PutValue(const PROPVARIANT &value, ExifField &field);
