#include "host/SnapshotFields.h"

#include <algorithm>

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
