#include "host/ExifFields.h"

#include "host/TextEncodings.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace
{
// An EXIF block holds at most 64 KB; no sound field of the lists is larger than this.
constexpr size_t LongestField = 4096;
constexpr size_t MostFieldBytes = 40000;
constexpr WORD LastType = 12;

// Make, model, software, date, host computer. The rest of IFD0 describes the file's own layout or
// belongs to other groups.
constexpr TagRange CameraMain[] = {{271, 272}, {305, 306}, {316, 316}};

// EXIF 2.32 without the maker note, the user's comment, the owner's name, sound files, and what the new
// file's own pixels say. Dates, exposure, light, sensor, conditions, lens, serial numbers.
constexpr TagRange CameraExif[] = {
    {33434, 33434}, {33437, 33437}, {34850, 34850}, {34852, 34852}, {34855, 34856}, {34864, 34869}, {36864, 36864},
    {36867, 36868}, {36880, 36882}, {37121, 37122}, {37377, 37386}, {37396, 37396}, {37520, 37522}, {37888, 37893},
    {40961, 40961}, {41483, 41484}, {41486, 41488}, {41492, 41493}, {41495, 41495}, {41728, 41730}, {41985, 41996},
    {42016, 42016}, {42033, 42037}, {42080, 42082}, {42240, 42240},
};

constexpr TagRange GpsTags[] = {{0, 31}};

struct TypeOfField
{
    VARTYPE variant;
    size_t bytes;
};

constexpr WORD TextType = 2;
constexpr WORD UndefinedType = 7;

// By TIFF's number; rationals pass as their two halves, numerator low.
constexpr auto FieldTypes = std::to_array<TypeOfField>({
    {VT_EMPTY, 0},
    {VT_UI1, 1},
    {VT_LPSTR, 1},
    {VT_UI2, 2},
    {VT_UI4, 4},
    {VT_UI8, 8},
    {VT_I1, 1},
    {VT_BLOB, 1},
    {VT_I2, 2},
    {VT_I4, 4},
    {VT_I8, 8},
    {VT_R4, 4},
    {VT_R8, 8},
});

void PutBytes(ExifField &field, WORD type, const void *data, size_t size)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    field.type = type;
    field.data.assign(bytes, bytes + size);
}

// With its closing zero, as the field has it.
void PutText(ExifField &field, const char *text)
{
    PutBytes(field, TextType, text, std::strlen(text) + 1);
}
} // namespace

std::span<const TagRange> SnapshotTags(ExifField::Directory directory)
{
    switch (directory)
    {
    case ExifField::Directory::Main:
        return CameraMain;
    case ExifField::Directory::Exif:
        return CameraExif;
    default:
        return GpsTags;
    }
}

std::vector<ExifField> &SnapshotFields::GroupOf(ExifField::Directory directory) const
{
    return directory == ExifField::Directory::Gps ? m_groups.gps : m_groups.camera;
}

bool SnapshotFields::Wants(ExifField::Directory directory, WORD tag, WORD type, size_t size) const
{
    const auto tags = SnapshotTags(directory);
    const auto &fields = GroupOf(directory);
    return size != 0 && size <= LongestField && size <= MostFieldBytes - m_bytes && type <= LastType &&
           std::any_of(tags.begin(), tags.end(),
                       [&](const TagRange &range) { return tag >= range.first && tag <= range.last; }) &&
           std::none_of(fields.begin(), fields.end(),
                        [&](const ExifField &field) { return field.directory == directory && field.tag == tag; });
}

void SnapshotFields::Keep(ExifField field)
{
    if (Wants(field.directory, field.tag, field.type, field.data.size()))
    {
        m_bytes += field.data.size();
        GroupOf(field.directory).push_back(std::move(field));
    }
}

ExifFieldValue::ExifFieldValue(const ExifField &field) : m_data(field.data)
{
    if (field.type >= FieldTypes.size() || field.data.empty())
    {
        return;
    }
    const auto [variant, bytes] = FieldTypes[field.type];
    m_data.push_back(0);
    if (variant == VT_LPSTR)
    {
        m_value.pszVal = reinterpret_cast<char *>(m_data.data());
    }
    else if (variant == VT_BLOB)
    {
        m_value.blob.cbSize = static_cast<ULONG>(field.data.size());
        m_value.blob.pBlobData = m_data.data();
    }
    else if (bytes == 0 || field.data.size() < bytes)
    {
        return;
    }
    else if (field.data.size() < 2 * bytes)
    {
        std::copy_n(m_data.begin(), bytes, &m_value.bVal);
    }
    else
    {
        m_value.vt = VT_VECTOR;
        m_value.caub.cElems = static_cast<ULONG>(field.data.size() / bytes);
        m_value.caub.pElems = m_data.data();
    }
    m_value.vt = static_cast<VARTYPE>(m_value.vt | variant);
}

bool PutValue(const PROPVARIANT &value, ExifField &field)
{
    if (value.vt == VT_LPSTR && value.pszVal != nullptr)
    {
        PutText(field, value.pszVal);
        return true;
    }
    if (value.vt == VT_LPWSTR && value.pwszVal != nullptr)
    {
        PutText(field, Utf8FromText(value.pwszVal).c_str());
        return true;
    }
    if (value.vt == VT_BLOB)
    {
        PutBytes(field, UndefinedType, value.blob.pBlobData, value.blob.cbSize);
        return true;
    }
    const VARTYPE element = value.vt & VT_TYPEMASK;
    const auto type = std::find_if(FieldTypes.begin() + 1, FieldTypes.end(), [&](const TypeOfField &each) {
        return each.variant == element && each.variant != VT_LPSTR && each.variant != VT_BLOB;
    });
    if (type == FieldTypes.end() || (value.vt & ~(VT_TYPEMASK | VT_VECTOR)) != 0)
    {
        return false;
    }
    const auto number = static_cast<WORD>(type - FieldTypes.begin());
    if ((value.vt & VT_VECTOR) != 0)
    {
        PutBytes(field, number, value.caub.pElems, value.caub.cElems * type->bytes);
    }
    else
    {
        PutBytes(field, number, &value.bVal, type->bytes);
    }
    return true;
}
