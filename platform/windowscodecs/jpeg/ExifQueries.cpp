#include "platform/windowscodecs/jpeg/ExifQueries.h"

#include "com/Hresult.h"
#include "platform/kernel32/Utf8.h"
#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include <wincodec.h>

#include <algorithm>
#include <string_view>

using namespace std::string_view_literals;

namespace
{
constexpr auto AsciiComment = "ASCII\0\0\0"sv;
constexpr auto UnicodeComment = "UNICODE\0"sv;
constexpr size_t CommentHead = 8;

// Whether the tag is the block's own structure, which nobody sets.
bool IsStructure(WORD tag) noexcept
{
    return tag == ExifTag::ExifDirectory || tag == ExifTag::GpsDirectory || tag == ExifTag::InteropDirectory ||
           tag == ExifTag::ThumbnailOffset || tag == ExifTag::ThumbnailLength || tag == 330;
}

struct Place
{
    bool WholeBlock = false;
    bool InThumbnail = false;
    std::vector<WORD> Directories; // below the main one, outermost first
    std::optional<WORD> Tag;
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
        if (directory.Parent == parent && SameName(item.Text, directory.Name))
        {
            tag = directory.Tag;
            return true;
        }
    }
    return false;
}

// Blocks in IFD0 that are stored as fields, not as directories.
bool NamesFieldBlock(const QueryItem &item, WORD &tag) noexcept
{
    tag = SameName(item.Text, TEXT("xmp"))    ? ExifTag::XmpPacket
          : SameName(item.Text, TEXT("iptc")) ? ExifTag::IptcRecords
          : SameName(item.Text, TEXT("irb"))  ? ExifTag::PhotoshopResources
                                              : WORD{0};
    return tag != 0;
}

Place Find(const QueryItem *items, size_t count)
{
    Place place;
    if (count == 0)
    {
        place.WholeBlock = true;
        return place;
    }
    place.InThumbnail = items[0].ItemKind == QueryItem::Kind::Name && SameName(items[0].Text, TEXT("thumb"));
    if (!place.InThumbnail && !SameName(items[0].Text, TEXT("ifd")))
    {
        ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
    }
    for (size_t i = 1; i < count; ++i)
    {
        const WORD parent = place.Directories.empty() ? WORD{0} : place.Directories.back();
        WORD tag = 0;
        if (items[i].ItemKind == QueryItem::Kind::Number && i + 1 == count && items[i].Number <= 0xFFFF)
        {
            place.Tag = static_cast<WORD>(items[i].Number);
        }
        else if (items[i].ItemKind == QueryItem::Kind::Name && !place.InThumbnail &&
                 NamesDirectory(items[i], parent, tag))
        {
            place.Directories.push_back(tag);
        }
        else if (items[i].ItemKind == QueryItem::Kind::Name && i == 1 && i + 1 == count && !place.InThumbnail &&
                 NamesFieldBlock(items[i], tag))
        {
            place.Tag = tag;
        }
        else
        {
            ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
        }
    }
    place.WholeBlock = !place.InThumbnail && place.Directories.empty() && !place.Tag;
    return place;
}

// Null if there is no such directory.
ExifDirectory *DirectoryAt(std::optional<ExifBlock> &block, const Place &place) noexcept
{
    if (!block)
    {
        return nullptr;
    }
    if (place.InThumbnail)
    {
        return block->Thumbnail ? &*block->Thumbnail : nullptr;
    }
    ExifDirectory *directory = &block->Main;
    for (const WORD tag : place.Directories)
    {
        const auto child = directory->Children.find(tag);
        if (child == directory->Children.end())
        {
            return nullptr;
        }
        directory = &child->second;
    }
    return directory;
}

bool IsAscii(const std::string &text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

ExifEntry CommentFromText(const std::string &text, bool bigEndian)
{
    if (IsAscii(text))
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

std::string TextFromComment(const ExifEntry &entry, bool bigEndian)
{
    std::string_view rest(reinterpret_cast<const char *>(entry.Data.data()), entry.Data.size());
    const bool wide = rest.substr(0, CommentHead) == UnicodeComment;
    rest.remove_prefix(CommentHead);
    if (!wide)
    {
        const std::string text = ToWellFormedUtf8(rest.substr(0, rest.find('\0')));
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
    WideText text;
    for (size_t at = 0; at + 1 < rest.size(); at += 2)
    {
        const unsigned char first = static_cast<unsigned char>(rest[at]);
        const unsigned char second = static_cast<unsigned char>(rest[at + 1]);
        text += static_cast<WCHAR>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return ToUtf8(WideView(text).substr(0, text.find(WCHAR{0})));
}

bool IsText(VARTYPE type) noexcept
{
    return type == VT_LPSTR || type == VT_LPWSTR || type == VT_BSTR;
}
} // namespace

bool GetExif(const std::optional<ExifBlock> &block, const QueryItem *items, size_t count, PROPVARIANT *value)
{
    const Place place = Find(items, count);
    const ExifDirectory *directory = DirectoryAt(const_cast<std::optional<ExifBlock> &>(block), place);
    if (directory == nullptr)
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
    if (!place.Tag)
    {
        return false;
    }
    const ExifEntry *found = directory->Find(*place.Tag);
    if (found == nullptr)
    {
        if (directory->Children.count(*place.Tag) != 0)
        {
            return false;
        }
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
    if (found->Tag == ExifTag::UserComment && found->Data.size() >= CommentHead)
    {
        ValueFromText(TextFromComment(*found, block->BigEndian), value);
        return true;
    }
    ExifEntry entry = *found;
    block->ConvertOrder(entry);
    ValueFromEntry(entry, value);
    return true;
}

void SetExif(std::optional<ExifBlock> &block, const QueryItem *items, size_t count, const PROPVARIANT &value)
{
    const Place place = Find(items, count);
    if (!place.Tag)
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE);
    }
    if (IsStructure(*place.Tag))
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTSUPPORTED);
    }
    const bool comment = *place.Tag == ExifTag::UserComment && IsText(value.vt);
    ExifEntry entry = comment ? CommentFromText(TextsFromValue(value).front(), block && block->BigEndian)
                              : EntryFromValue(value);
    if (place.InThumbnail && (!block || !block->Thumbnail))
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
    entry.Tag = *place.Tag;
    ExifBlock changed = block.value_or(ExifBlock());
    changed.ConvertOrder(entry);
    ExifDirectory *directory = place.InThumbnail ? &*changed.Thumbnail : &changed.Main;
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

bool RemoveExif(std::optional<ExifBlock> &block, const QueryItem *items, size_t count)
{
    const Place place = Find(items, count);
    if (place.WholeBlock)
    {
        const bool there = block.has_value();
        block.reset();
        return there;
    }
    ExifDirectory *directory = DirectoryAt(block, place);
    if (directory == nullptr)
    {
        return false;
    }
    if (place.Tag)
    {
        return directory->Remove(*place.Tag);
    }
    if (place.InThumbnail)
    {
        block->RemoveThumbnail();
        return true;
    }
    Place parent = place;
    parent.Directories.pop_back();
    return DirectoryAt(block, parent)->Remove(place.Directories.back());
}
