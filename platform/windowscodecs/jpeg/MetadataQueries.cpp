#include "platform/windowscodecs/jpeg/MetadataQueries.h"

#include "com/Hresult.h"
#include "platform/kernel32/Utf8.h"
#include "platform/windowscodecs/jpeg/ExifQueries.h"
#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include <wincodec.h>

#include <algorithm>

namespace
{
[[noreturn]] void RefusePath()
{
    ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
}

[[noreturn]] void ReportMissing()
{
    ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
}

[[noreturn]] void RefuseType()
{
    ThrowHresult(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE);
}

bool Is(const QueryItem &item, WideView name) noexcept
{
    return item.ItemKind == QueryItem::Kind::Name && SameName(item.Text, name);
}

// The block that a path names, and the rest of the path.
struct Target
{
    enum class Block
    {
        Exif,
        Xmp,
        Photoshop,
        Comment,
        Other
    };
    Block Kind;
    BYTE Marker = 0;
    UINT Index = 0;
    const QueryItem *Rest;
    size_t Count;
};

Target Aim(const QueryPath &path)
{
    const QueryItem &first = path.front();
    Target target{Target::Block::Other, 0, first.Index, path.data() + 1, path.size() - 1};
    if (Is(first, TEXT("xmp")))
    {
        target.Kind = Target::Block::Xmp;
        return target;
    }
    if (Is(first, TEXT("com")))
    {
        target.Kind = Target::Block::Comment;
        return target;
    }
    const WideText &name = first.Text;
    if (name.size() < 4 || name.size() > 5 || !SameName(name.substr(0, 3), TEXT("app")))
    {
        RefusePath();
    }
    UINT number = 0;
    for (const WCHAR digit : WideView(name).substr(3))
    {
        if (digit < '0' || digit > '9')
        {
            RefusePath();
        }
        number = number * 10 + (digit - '0');
    }
    if (number > 15)
    {
        RefusePath();
    }
    target.Marker = static_cast<BYTE>(MARKER_APP0 + number);
    if (target.Marker == MARKER_APP1 && target.Index == 0)
    {
        target.Kind = Target::Block::Exif;
    }
    else if (target.Marker == MARKER_APP13)
    {
        target.Kind = Target::Block::Photoshop;
    }
    return target;
}

// The name of a dataset; null if the path ends at one of the blocks above it.
const QueryItem *DatasetOf(const Target &target)
{
    static constexpr WideView Above[] = {TEXT("irb"), TEXT("8bimiptc"), TEXT("iptc")};
    for (size_t i = 0; i < target.Count && i < 3; ++i)
    {
        if (!Is(target.Rest[i], Above[i]))
        {
            RefusePath();
        }
    }
    if (target.Count > 4 || (target.Count == 4 && target.Rest[3].ItemKind != QueryItem::Kind::Name))
    {
        RefusePath();
    }
    return target.Count == 4 ? &target.Rest[3] : nullptr;
}

auto FindOther(MetadataBlocks &blocks, const Target &target)
{
    // The first APP1 is the EXIF block's place, whether there is one or not.
    UINT index = target.Marker == MARKER_APP1 ? target.Index - 1 : target.Index;
    return std::find_if(blocks.Others.begin(), blocks.Others.end(), [&](const OutputSegment &segment) {
        return segment.Marker == target.Marker && index-- == 0;
    });
}

bool NamesComment(const Target &target)
{
    if (target.Count > 1 || (target.Count == 1 && !Is(target.Rest[0], TEXT("TextEntry"))))
    {
        RefusePath();
    }
    return target.Count == 1;
}

// The copies that some writers keep in IFD0.
void RemoveFromMain(MetadataBlocks &blocks, std::initializer_list<WORD> tags, bool &removed)
{
    for (const WORD tag : tags)
    {
        removed |= blocks.Exif && blocks.Exif->Main.Remove(tag);
    }
}

bool RemovePhotoshop(MetadataBlocks &blocks, const Target &target)
{
    if (const QueryItem *dataset = DatasetOf(target))
    {
        return blocks.Photoshop.Remove(ToUtf8(dataset->Text));
    }
    const bool wholeBlock = target.Count < 2;
    bool removed = wholeBlock ? !blocks.Photoshop.IsEmpty() : blocks.Photoshop.HasIptc();
    RemoveFromMain(blocks, {ExifTag::IptcRecords}, removed);
    if (wholeBlock)
    {
        RemoveFromMain(blocks, {ExifTag::PhotoshopResources}, removed);
        blocks.Photoshop.Clear();
    }
    blocks.Photoshop.RemoveIptc();
    return removed;
}

bool RemoveXmp(MetadataBlocks &blocks, const Target &target)
{
    if (target.Count > 0)
    {
        return blocks.Xmp.Remove(target.Rest, target.Count);
    }
    bool removed = !blocks.Xmp.IsEmpty();
    blocks.Xmp.Clear();
    RemoveFromMain(blocks, {ExifTag::XmpPacket}, removed);
    return removed;
}

bool RemoveComment(MetadataBlocks &blocks, const Target &target)
{
    NamesComment(target);
    if (target.Index >= blocks.Comments.size())
    {
        return false;
    }
    blocks.Comments.erase(blocks.Comments.begin() + target.Index);
    return true;
}

QueryAnswer AnswerTexts(const std::vector<std::string> &texts, PROPVARIANT *value)
{
    if (texts.empty())
    {
        ReportMissing();
    }
    ValueFromTexts(texts, value);
    return QueryAnswer::Value;
}

QueryAnswer AnswerBlock(bool there)
{
    if (!there)
    {
        ReportMissing();
    }
    return QueryAnswer::Block;
}
} // namespace

QueryAnswer GetMetadata(MetadataBlocks &blocks, WideView text, PROPVARIANT *value)
{
    const QueryPath path = ParseQueryPath(text);
    const Target target = Aim(path);
    switch (target.Kind)
    {
    case Target::Block::Exif:
        return GetExif(blocks.Exif, target.Rest, target.Count, value) ? QueryAnswer::Value : QueryAnswer::Block;
    case Target::Block::Xmp:
        return target.Count == 0 ? AnswerBlock(!blocks.Xmp.IsEmpty())
                                 : AnswerTexts(blocks.Xmp.Get(target.Rest, target.Count), value);
    case Target::Block::Photoshop:
        if (const QueryItem *dataset = DatasetOf(target))
        {
            return AnswerTexts(blocks.Photoshop.Get(ToUtf8(dataset->Text)), value);
        }
        return AnswerBlock(target.Count < 2 ? !blocks.Photoshop.IsEmpty() : blocks.Photoshop.HasIptc());
    case Target::Block::Comment:
    {
        const bool named = NamesComment(target);
        const bool there = target.Index < blocks.Comments.size();
        return named && there ? AnswerTexts({ToWellFormedUtf8(blocks.Comments[target.Index])}, value)
                              : AnswerBlock(there);
    }
    case Target::Block::Other:
        break;
    }
    if (target.Count > 0)
    {
        RefusePath();
    }
    return AnswerBlock(FindOther(blocks, target) != blocks.Others.end());
}

void SetMetadata(MetadataBlocks &blocks, WideView text, const PROPVARIANT &value)
{
    const QueryPath path = ParseQueryPath(text);
    const Target target = Aim(path);
    switch (target.Kind)
    {
    case Target::Block::Exif:
        SetExif(blocks.Exif, target.Rest, target.Count, value);
        return;
    case Target::Block::Xmp:
        if (target.Count == 0)
        {
            RefuseType();
        }
        blocks.Xmp.Set(target.Rest, target.Count, TextsFromValue(value));
        return;
    case Target::Block::Photoshop:
        if (const QueryItem *dataset = DatasetOf(target))
        {
            blocks.Photoshop.Set(ToUtf8(dataset->Text), TextsFromValue(value));
            return;
        }
        RefuseType();
    case Target::Block::Comment:
    {
        if (!NamesComment(target))
        {
            RefuseType();
        }
        const std::vector<std::string> texts = TextsFromValue(value);
        if (texts.size() != 1)
        {
            RefuseType();
        }
        if (texts[0].size() > MaxSegmentBytes || target.Index > blocks.Comments.size())
        {
            ThrowHresult(target.Index > blocks.Comments.size() ? WINCODEC_ERR_PROPERTYNOTFOUND
                                                               : WINCODEC_ERR_TOOMUCHMETADATA);
        }
        blocks.Comments.resize(std::max<size_t>(blocks.Comments.size(), target.Index + 1));
        blocks.Comments[target.Index] = texts[0];
        return;
    }
    case Target::Block::Other:
        RefuseType();
    }
}

void RemoveMetadata(MetadataBlocks &blocks, WideView text)
{
    const QueryPath path = ParseQueryPath(text);
    const Target target = Aim(path);
    bool removed = false;
    switch (target.Kind)
    {
    case Target::Block::Exif:
        removed = RemoveExif(blocks.Exif, target.Rest, target.Count);
        break;
    case Target::Block::Xmp:
        removed = RemoveXmp(blocks, target);
        break;
    case Target::Block::Photoshop:
        removed = RemovePhotoshop(blocks, target);
        break;
    case Target::Block::Comment:
        removed = RemoveComment(blocks, target);
        break;
    case Target::Block::Other:
    {
        const auto found = FindOther(blocks, target);
        removed = target.Count == 0 && found != blocks.Others.end();
        if (removed)
        {
            blocks.Others.erase(found);
        }
        break;
    }
    }
    if (!removed)
    {
        ReportMissing();
    }
}
