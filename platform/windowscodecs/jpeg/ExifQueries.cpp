#include "platform/windowscodecs/jpeg/ExifQueries.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"
#include "com/TextConversion.h"
#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include <wincodec.h>

#include <algorithm>
#include <string_view>

using namespace std::string_view_literals;

namespace
{
constexpr auto AsciiComment = "ASCII\0\0\0"sv;
constexpr auto UnicodeComment = "UNICODE\0"sv;

struct Place
{
    std::vector<WORD> Directories; // below the main one, outermost first
    WORD Tag = 0;
};

bool NamesDirectory(const QueryItem &item, WORD parent, WORD &tag) noexcept
{
    static constexpr struct
    {
        WideView Name;
        WORD Parent;
        WORD Tag;
    } directories[] = {{TEXT("exif"), 0, ExifTag::ExifDirectory},
                       {TEXT("gps"), 0, ExifTag::GpsDirectory},
                       {TEXT("interop"), ExifTag::ExifDirectory, ExifTag::InteropDirectory}};
    for (const auto &directory : directories)
    {
        if (directory.Parent == parent && EqualsIgnoringCase(item.Text, directory.Name))
        {
            tag = directory.Tag;
            return true;
        }
    }
    return false;
}

// "ifd", directories in it, and a number at the end.
Place Locate(std::span<const QueryItem> path)
{
    if (path.size() < 2 || !EqualsIgnoringCase(path[0].Text, TEXT("ifd")) ||
        path.back().ItemKind != QueryItem::Kind::Number)
    {
        ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
    }
    Place place{{}, path.back().Number};
    for (const QueryItem &item : path.subspan(1, path.size() - 2))
    {
        WORD tag = 0;
        if (item.ItemKind != QueryItem::Kind::Name ||
            !NamesDirectory(item, place.Directories.empty() ? WORD{0} : place.Directories.back(), tag))
        {
            ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
        }
        place.Directories.push_back(tag);
    }
    return place;
}

// Null if there is no such directory. Block is const or not, and so is the directory.
template <class Block>
auto DirectoryAt(Block &block, const Place &place) noexcept
{
    auto *directory = block ? &block->Main : nullptr;
    for (const WORD tag : place.Directories)
    {
        if (directory != nullptr)
        {
            const auto child = directory->Children.find(tag);
            directory = child != directory->Children.end() ? &child->second : nullptr;
        }
    }
    return directory;
}

ExifEntry CommentFromText(const std::string &text, bool bigEndian)
{
    if (std::ranges::all_of(text, [](char c) { return (c & 0x80) == 0; }))
    {
        Bytes data(AsciiComment.begin(), AsciiComment.end());
        data.insert(data.end(), text.begin(), text.end());
        return {ExifTag::UserComment, EXIF_UNDEFINED, std::move(data)};
    }
    Bytes data(UnicodeComment.begin(), UnicodeComment.end());
    for (const WCHAR c : FromUtf8(text))
    {
        const BYTE high = static_cast<BYTE>(c >> 8);
        const BYTE low = static_cast<BYTE>(c);
        data.push_back(bigEndian ? high : low);
        data.push_back(bigEndian ? low : high);
    }
    return {ExifTag::UserComment, EXIF_UNDEFINED, std::move(data)};
}
} // namespace

void GetExif(const std::optional<ExifBlock> &block, std::span<const QueryItem> path, PROPVARIANT *value)
{
    const Place place = Locate(path);
    const ExifDirectory *directory = DirectoryAt(block, place);
    const ExifEntry *found = directory != nullptr ? directory->Find(place.Tag) : nullptr;
    if (found == nullptr)
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
    ExifEntry entry = *found;
    block->ConvertOrder(entry);
    ValueFromEntry(entry, value);
}

void SetExif(std::optional<ExifBlock> &block, std::span<const QueryItem> path, const PROPVARIANT &value)
{
    const Place place = Locate(path);
    const bool isComment = place.Tag == ExifTag::UserComment && value.vt == VT_LPWSTR;
    ExifBlock changed = block.value_or(ExifBlock());
    ExifEntry entry =
        isComment ? CommentFromText(TextsFromValue(value).front(), changed.BigEndian) : EntryFromValue(value);
    entry.Tag = place.Tag;
    changed.ConvertOrder(entry);
    ExifDirectory *directory = &changed.Main;
    for (const WORD tag : place.Directories)
    {
        directory = &directory->Children[tag];
    }
    directory->Set(std::move(entry));
    if (!changed.Fits())
    {
        ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
    }
    block = std::move(changed);
}

bool RemoveExif(std::optional<ExifBlock> &block, std::span<const QueryItem> path)
{
    if (path.empty())
    {
        const bool there = block.has_value();
        block.reset();
        return there;
    }
    const Place place = Locate(path);
    ExifDirectory *directory = DirectoryAt(block, place);
    return directory != nullptr && directory->Remove(place.Tag);
}
