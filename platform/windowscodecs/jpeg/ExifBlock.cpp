#include "platform/windowscodecs/jpeg/ExifBlock.h"

#include <algorithm>
#include <cmath>
#include <limits>

UINT ExifElementBytes(WORD type) noexcept
{
    static constexpr BYTE Sizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type < sizeof Sizes ? Sizes[type] : 0;
}

UINT ExifPieceBytes(WORD type) noexcept
{
    return type == EXIF_RATIONAL || type == EXIF_SRATIONAL ? 4 : ExifElementBytes(type);
}

bool ExifDirectory::IsEmpty() const noexcept
{
    return Entries.empty() &&
           std::all_of(Children.begin(), Children.end(), [](const auto &child) { return child.second.IsEmpty(); });
}

const ExifEntry *ExifDirectory::Find(WORD tag) const noexcept
{
    const auto found =
        std::find_if(Entries.begin(), Entries.end(), [tag](const ExifEntry &entry) { return entry.Tag == tag; });
    return found == Entries.end() ? nullptr : &*found;
}

void ExifDirectory::Set(ExifEntry entry)
{
    Remove(entry.Tag);
    const auto place = std::find_if(Entries.begin(), Entries.end(),
                                    [&](const ExifEntry &other) { return other.Tag > entry.Tag; });
    Entries.insert(place, std::move(entry));
}

bool ExifDirectory::Remove(WORD tag)
{
    const size_t entries = std::erase_if(Entries, [tag](const ExifEntry &entry) { return entry.Tag == tag; });
    return Children.erase(tag) + entries > 0;
}

void ExifBlock::ConvertOrder(ExifEntry &entry) const noexcept
{
    const UINT piece = ExifPieceBytes(entry.Type);
    if (!BigEndian || piece < 2)
    {
        return;
    }
    for (size_t at = 0; at + piece <= entry.Data.size(); at += piece)
    {
        std::reverse(entry.Data.begin() + at, entry.Data.begin() + at + piece);
    }
}

namespace
{
void Append32(Bytes &data, DWORD value)
{
    for (int shift = 0; shift < 32; shift += 8)
    {
        data.push_back(static_cast<BYTE>(value >> shift));
    }
}

DWORD Get32(const Bytes &data, size_t at) noexcept
{
    return data[at] | data[at + 1] << 8 | data[at + 2] << 16 | static_cast<DWORD>(data[at + 3]) << 24;
}

// Four decimal places, fewer where the numerator would not hold them.
Bytes RationalOf(double value)
{
    DWORD denominator = value == std::floor(value) ? 1 : 10000;
    while (denominator > 1 && value * denominator > std::numeric_limits<DWORD>::max())
    {
        denominator /= 10;
    }
    const double scaled = std::clamp(std::round(value * denominator), 0.0, 4294967295.0);
    Bytes data;
    Append32(data, static_cast<DWORD>(scaled));
    Append32(data, denominator);
    return data;
}
} // namespace

void ExifBlock::SetResolution(double x, double y)
{
    ExifEntry entries[] = {{ExifTag::XResolution, EXIF_RATIONAL, RationalOf(x)},
                           {ExifTag::YResolution, EXIF_RATIONAL, RationalOf(y)},
                           {ExifTag::ResolutionUnit, EXIF_SHORT, {2, 0}}};
    for (ExifEntry &entry : entries)
    {
        ConvertOrder(entry);
        Main.Set(std::move(entry));
    }
}

bool ExifBlock::GetResolution(double &x, double &y) const
{
    const auto read = [this](WORD tag, double &value) {
        const ExifEntry *found = Main.Find(tag);
        if (found == nullptr || found->Type != EXIF_RATIONAL || found->Data.size() != 8)
        {
            return false;
        }
        ExifEntry entry = *found;
        ConvertOrder(entry);
        const DWORD denominator = Get32(entry.Data, 4);
        value = denominator != 0 ? static_cast<double>(Get32(entry.Data, 0)) / denominator : 0;
        return denominator != 0;
    };
    if (!read(ExifTag::XResolution, x) || !read(ExifTag::YResolution, y))
    {
        return false;
    }
    constexpr BYTE none = 1;
    constexpr BYTE centimetre = 3;
    const ExifEntry *entry = Main.Find(ExifTag::ResolutionUnit);
    const bool isTold = entry != nullptr && entry->Type == EXIF_SHORT && entry->Data.size() == 2;
    const BYTE unit = isTold ? entry->Data[BigEndian ? 1 : 0] : BYTE{0};
    if (unit == centimetre)
    {
        x *= 2.54;
        y *= 2.54;
    }
    return unit != none && x > 0 && y > 0;
}
