#include "host/ImageMetadata.h"

#include "host/ExifFields.h"
#include "host/MetadataTexts.h"

#include "com/ComPtr.h"
#include "com/TextConversion.h"

#include <objbase.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace
{
// Where a block lies, by the kinds of files.
using BlockPaths = std::span<const WideView>;
constexpr WideView MainPaths[] = {TEXT("/app1/ifd"), TEXT("/ifd")};
constexpr WideView ExifPaths[] = {TEXT("/app1/ifd/exif"), TEXT("/ifd/exif")};
constexpr WideView InteropPaths[] = {TEXT("/app1/ifd/exif/interop"), TEXT("/ifd/exif/interop")};
constexpr WideView GpsPaths[] = {TEXT("/app1/ifd/gps"), TEXT("/ifd/gps")};
constexpr WideView XmpPaths[] = {TEXT("/xmp"), TEXT("/ifd/xmp")};
constexpr WideView IptcPaths[] = {TEXT("/app13/irb/8bimiptc/iptc"), TEXT("/ifd/iptc"),
                                  TEXT("/ifd/irb/8bimiptc/iptc")};
constexpr WideView CommentPaths[] = {TEXT("/com")};

// Ends the reading of a list that a crafted file makes endless.
constexpr int MostElements = 1000;

class QueryValue
{
public:
    QueryValue() = default;
    ~QueryValue() { PropVariantClear(&m_value); }
    QueryValue(const QueryValue &) = delete;
    QueryValue &operator=(const QueryValue &) = delete;

    const PROPVARIANT &Get() const noexcept { return m_value; }

    bool Read(IWICMetadataQueryReader &reader, const WideText &path)
    {
        PropVariantClear(&m_value);
        return SUCCEEDED(reader.GetMetadataByName(path.c_str(), &m_value)) && m_value.vt != VT_EMPTY;
    }

    bool Read(IWICMetadataQueryReader &reader, BlockPaths blocks, const WideText &item)
    {
        return std::ranges::any_of(blocks, [&](WideView block) { return Read(reader, WideText(block) + item); });
    }

    // Bytes of a field, whether it is called a text, undefined or a list of bytes.
    std::optional<std::string_view> Bytes() const
    {
        const auto view = [](const void *data, size_t size) {
            return std::string_view(static_cast<const char *>(data), data != nullptr ? size : 0);
        };
        switch (m_value.vt)
        {
        case VT_LPSTR:
            return m_value.pszVal != nullptr ? std::string_view(m_value.pszVal) : std::string_view();
        case VT_BLOB:
            return view(m_value.blob.pBlobData, m_value.blob.cbSize);
        case VT_VECTOR | VT_UI1:
            return view(m_value.caub.pElems, m_value.caub.cElems);
        default:
            return std::nullopt;
        }
    }

    std::optional<WideText> Wide() const
    {
        return m_value.vt == VT_LPWSTR && m_value.pwszVal != nullptr
                   ? std::optional(WithoutPadding(m_value.pwszVal))
                   : std::nullopt;
    }

    std::optional<long> Number() const
    {
        switch (m_value.vt)
        {
        case VT_UI1:
            return m_value.bVal;
        case VT_UI2:
            return m_value.uiVal;
        case VT_UI4:
            return static_cast<long>(m_value.ulVal);
        default:
            return std::nullopt;
        }
    }

    ComPtr<IWICMetadataQueryReader> Block() const
    {
        return m_value.vt == VT_UNKNOWN ? QueryFor<IWICMetadataQueryReader>(m_value.punkVal) : nullptr;
    }

    // One text or several; empty ones are left out.
    std::vector<WideText> Texts() const
    {
        std::vector<WideText> texts;
        const auto add = [&](WideText text) {
            if (!text.empty())
            {
                texts.push_back(std::move(text));
            }
        };
        if (const auto text = Wide())
        {
            add(*text);
        }
        else if (const auto bytes = Bytes())
        {
            add(TextOfBytes(*bytes));
        }
        else if (m_value.vt == (VT_VECTOR | VT_LPWSTR))
        {
            for (ULONG i = 0; i < m_value.calpwstr.cElems; ++i)
            {
                add(WithoutPadding(m_value.calpwstr.pElems[i]));
            }
        }
        else if (m_value.vt == (VT_VECTOR | VT_LPSTR))
        {
            for (ULONG i = 0; i < m_value.calpstr.cElems; ++i)
            {
                add(TextOfBytes(m_value.calpstr.pElems[i]));
            }
        }
        else if (const auto number = Number())
        {
            add(FromUtf8(std::to_string(*number)));
        }
        return texts;
    }

private:
    PROPVARIANT m_value = {};
};

WideText NumberedItem(const char *kind, int number)
{
    return FromUtf8("/{" + std::string(kind) + "=" + std::to_string(number) + "}");
}

WideText FieldItem(WORD tag)
{
    return NumberedItem("ushort", tag);
}

WideText FirstOf(const std::vector<WideText> &texts)
{
    return texts.empty() ? WideText() : texts.front();
}

class FrameTexts final : public MetadataTexts
{
public:
    explicit FrameTexts(IWICMetadataQueryReader &reader) : m_reader(reader) {}

    WideText Xmp(const WCHAR *property) const override
    {
        QueryValue value;
        if (!value.Read(m_reader, XmpPaths, WideText(TEXT("/")) + property))
        {
            return WideText();
        }
        if (const auto block = value.Block())
        {
            QueryValue chosen;
            return FirstOf(chosen.Read(*block.Get(), TEXT("/x-default")) ? chosen.Texts()
                                                                         : Elements(*block.Get()));
        }
        return FirstOf(value.Texts());
    }

    std::vector<WideText> XmpList(const WCHAR *property) const override
    {
        QueryValue value;
        if (!value.Read(m_reader, XmpPaths, WideText(TEXT("/")) + property))
        {
            return {};
        }
        const auto block = value.Block();
        return block ? Elements(*block.Get()) : value.Texts();
    }

    WideText Iptc(const IptcDataset &dataset) const override { return FirstOf(IptcList(dataset)); }

    std::vector<WideText> IptcList(const IptcDataset &dataset) const override
    {
        return TextsOf(IptcPaths, WideText(TEXT("/{str=")) + dataset.name + TEXT("}"));
    }

    WideText Exif(WORD tag) const override { return FirstOf(TextsOf(MainPaths, FieldItem(tag))); }

    WideText ExifWindowsText(WORD tag) const override
    {
        QueryValue value;
        value.Read(m_reader, MainPaths, FieldItem(tag));
        const auto bytes = value.Bytes();
        return bytes ? WindowsTextOfBytes(*bytes) : value.Wide().value_or(WideText());
    }

    WideText ExifUserComment() const override
    {
        QueryValue value;
        value.Read(m_reader, ExifPaths, FieldItem(ExifTag::UserComment));
        const auto bytes = value.Bytes();
        // A query doesn't say which byte order the file has.
        return bytes ? CharsetTextOfBytes(*bytes, ByteOrder16::LittleEndian) : value.Wide().value_or(WideText());
    }

    std::optional<long> ExifRating() const override
    {
        QueryValue value;
        value.Read(m_reader, MainPaths, FieldItem(ExifTag::Rating));
        return value.Number();
    }

    WideText FileComment() const override { return FirstOf(TextsOf(CommentPaths, TEXT("/TextEntry"))); }

private:
    std::vector<WideText> TextsOf(BlockPaths blocks, const WideText &item) const
    {
        QueryValue value;
        return value.Read(m_reader, blocks, item) ? value.Texts() : std::vector<WideText>();
    }

    static std::vector<WideText> Elements(IWICMetadataQueryReader &list)
    {
        std::vector<WideText> texts;
        QueryValue value;
        for (int i = 0; i < MostElements && value.Read(list, NumberedItem("ulong", i)); ++i)
        {
            if (const WideText text = FirstOf(value.Texts()); !text.empty())
            {
                texts.push_back(text);
            }
        }
        return texts;
    }

    IWICMetadataQueryReader &m_reader;
};

void ReadFields(IWICMetadataQueryReader &reader, BlockPaths blocks, ExifField::Directory directory,
                SnapshotFields &fields)
{
    for (const TagRange &range : SnapshotTags(directory))
    {
        for (WORD tag = range.first; tag <= range.last; ++tag)
        {
            QueryValue value;
            ExifField field{directory, tag, 0, {}};
            if (value.Read(reader, blocks, FieldItem(tag)) && PutValue(value.Get(), field))
            {
                fields.Keep(std::move(field));
            }
        }
    }
}
} // namespace

UINT16 ReadFrameOrientation(IWICMetadataQueryReader &reader)
{
    QueryValue value;
    value.Read(reader, MainPaths, FieldItem(ExifTag::Orientation));
    return ValidOrientation(value.Number().value_or(1));
}

bool IsFrameInAdobeRgb(IWICMetadataQueryReader &reader)
{
    QueryValue space;
    QueryValue index;
    space.Read(reader, ExifPaths, FieldItem(ExifTag::ColorSpace));
    index.Read(reader, InteropPaths, FieldItem(ExifTag::InteroperabilityIndex));
    return IsAdobeRgb(space.Number().value_or(0), Utf8FromText(FirstOf(index.Texts())));
}

void ReadFrameMetadata(IWICMetadataQueryReader &reader, ImageTexts &texts, MetadataSnapshot *groups)
{
    const FrameTexts blocks(reader);
    texts = ChooseTexts(blocks);
    if (groups == nullptr)
    {
        return;
    }
    *groups = MetadataSnapshot();
    SnapshotFields fields(*groups);
    ReadFields(reader, MainPaths, ExifField::Directory::Main, fields);
    ReadFields(reader, ExifPaths, ExifField::Directory::Exif, fields);
    ReadFields(reader, GpsPaths, ExifField::Directory::Gps, fields);
    groups->orientation = ReadFrameOrientation(reader);
    groups->isAdobeRgb = IsFrameInAdobeRgb(reader);
    ChooseNumbers(blocks, *groups);
}
