#include "platform/windowscodecs/jpeg/MetadataQueries.h"

#include "com/AsciiText.h"
#include "com/ComObject.h"
#include "com/Hresult.h"
#include "com/TextConversion.h"
#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/jpeg/ExifQueries.h"
#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include <wincodec.h>

#include <algorithm>
#include <mutex>
#include <span>

namespace
{
[[noreturn]] void RefusePath()
{
    ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
}

using Items = std::span<const QueryItem>;

bool Is(const QueryItem &item, WideView name) noexcept
{
    return item.ItemKind == QueryItem::Kind::Name && item.Index == 0 && EqualsIgnoringCase(item.Text, name);
}

// Of the EXIF block.
bool IsExif(Items path) noexcept
{
    return Is(path[0], TEXT("app1"));
}

// "app0" to "app15", or "com".
BYTE MarkerOf(const QueryItem &item)
{
    if (EqualsIgnoringCase(item.Text, TEXT("com")))
    {
        return MARKER_COM;
    }
    for (int number = 0; number <= 15; ++number)
    {
        const std::string digits = std::to_string(number);
        if (EqualsIgnoringCase(item.Text, TEXT("app") + WideText(digits.begin(), digits.end())))
        {
            return static_cast<BYTE>(MARKER_APP0 + number);
        }
    }
    RefusePath();
}

// Null for another path.
const QueryItem *DatasetOf(Items path) noexcept
{
    static constexpr WideView Above[] = {TEXT("app13"), TEXT("irb"), TEXT("8bimiptc"), TEXT("iptc")};
    const bool isDataset =
        path.size() == 5 && std::equal(std::begin(Above), std::end(Above), path.begin(),
                                       [](WideView name, const QueryItem &item) { return Is(item, name); });
    return isDataset && path[4].ItemKind == QueryItem::Kind::Name ? &path[4] : nullptr;
}

bool IsApp13(const OutputSegment &segment) noexcept
{
    return segment.Marker == MARKER_APP13;
}

bool DropCopies(MetadataBlocks &blocks, bool (*isOne)(const OutputSegment &) noexcept)
{
    return std::erase_if(blocks.Copied, isOne) > 0;
}

bool RemoveSegment(MetadataBlocks &blocks, const QueryItem &item)
{
    const BYTE marker = MarkerOf(item);
    // The first APP1 is the EXIF block's place, whether there is one or not.
    UINT index = item.Index - (marker == MARKER_APP1 ? 1 : 0);
    const auto found = std::ranges::find_if(blocks.Copied, [&](const OutputSegment &segment) {
        return segment.Marker == marker && !IsXmp(segment) && index-- == 0;
    });
    const bool isThere = found != blocks.Copied.end();
    if (isThere)
    {
        blocks.Copied.erase(found);
    }
    return isThere;
}

bool Remove(MetadataBlocks &blocks, Items path)
{
    if (IsExif(path))
    {
        const bool isThumbnail = path.size() == 2 && Is(path[1], TEXT("thumb"));
        return !isThumbnail && RemoveExif(blocks.Exif, path.subspan(1));
    }
    if (path.size() > 1)
    {
        RefusePath();
    }
    return Is(path[0], TEXT("xmp"))     ? DropCopies(blocks, IsXmp) | blocks.Texts.RemoveXmp()
           : Is(path[0], TEXT("app13")) ? DropCopies(blocks, IsApp13) | blocks.Texts.RemoveIptc()
                                        : RemoveSegment(blocks, path[0]);
}

void GetMetadata(const MetadataBlocks &blocks, WideView text, PROPVARIANT *value)
{
    const QueryPath path = ParseQueryPath(text);
    if (!IsExif(path))
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
    GetExif(blocks.Exif, Items(path).subspan(1), value);
}

void SetMetadata(MetadataBlocks &blocks, WideView text, const PROPVARIANT &value)
{
    const QueryPath path = ParseQueryPath(text);
    if (IsExif(path))
    {
        SetExif(blocks.Exif, Items(path).subspan(1), value);
    }
    else if (const QueryItem *dataset = DatasetOf(path))
    {
        DropCopies(blocks, IsApp13);
        blocks.Texts.SetIptc(dataset->Text, TextsFromValue(value));
    }
    else if (Is(path[0], TEXT("xmp")) && path.size() == 2 && path[1].ItemKind == QueryItem::Kind::Name)
    {
        DropCopies(blocks, IsXmp);
        blocks.Texts.SetXmp(ToUtf8(path[1].Text), TextsFromValue(value));
    }
    else
    {
        RefusePath();
    }
}

void RemoveMetadata(MetadataBlocks &blocks, WideView text)
{
    if (!Remove(blocks, ParseQueryPath(text)))
    {
        ThrowHresult(WINCODEC_ERR_PROPERTYNOTFOUND);
    }
}

// Reader and writer in one class; the reader's interface has no methods that change anything.
class CMetadataQuery final
    : public UncalledOfMetadataQueries<
          ComObject<CMetadataQuery, Answers<IWICMetadataQueryWriter, IWICMetadataQueryReader>>>
{
public:
    CMetadataQuery(ComPtr<IUnknown> owner, MetadataBlocks &blocks) : m_owner(std::move(owner)), m_blocks(blocks) {}

    // value may be null to ask whether there is one.
    STDMETHODIMP GetMetadataByName(LPCWSTR name, PROPVARIANT *value) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        PROPVARIANT found{};
        const HRESULT result = AtBoundary([&] {
            const std::lock_guard guard(m_mutex);
            GetMetadata(m_blocks, name, &found);
            return S_OK;
        });
        if (value != nullptr)
        {
            *value = found;
        }
        else
        {
            PropVariantClear(&found);
        }
        return result;
    }

    STDMETHODIMP SetMetadataByName(LPCWSTR name, const PROPVARIANT *value) noexcept override
    {
        if (name == nullptr || value == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { SetMetadata(m_blocks, name, *value); });
    }

    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { RemoveMetadata(m_blocks, name); });
    }

private:
    template <class Work>
    HRESULT Change(Work work) noexcept
    {
        return AtBoundary([&] {
            const std::lock_guard guard(m_mutex);
            work();
            return S_OK;
        });
    }

    ComPtr<IUnknown> m_owner;
    MetadataBlocks &m_blocks;
    std::mutex m_mutex;
};
} // namespace

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks)
{
    return CMetadataQuery::Make(std::move(owner), blocks);
}

ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks)
{
    return CMetadataQuery::Make(std::move(owner), blocks);
}
