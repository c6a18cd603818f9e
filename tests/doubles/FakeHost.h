// A host with a list of items and a reader of metadata, both as a test sets them.
//
// Lines of the record: "log LEVEL MESSAGE", "list", "item N", "read PATH".
#pragma once

#include "core/ComObject.h"
#include "core/HandleOwner.h"
#include "tests/doubles/CallRecord.h"

#include "HostContract.h"

#include <functional>
#include <optional>

// Gives every picture the same texts, those that are set.
class FakeImageMetadata final : public ComObject<FakeImageMetadata, IHalvoraImageMetadata>
{
public:
    explicit FakeImageMetadata(CallRecord &record) : m_record(record) {}

    HRESULT Result = S_OK;
    std::optional<WideText> Caption;
    std::optional<WideText> Description;
    std::optional<WideText> Keywords;
    std::optional<WideText> ExifComment;

    STDMETHODIMP ReadImageMetadata(LPCWSTR path, INT32 reserved, INT32 longEdge, IWICBitmapSource **source,
                                   INT32 flags, ItemRecord *record) noexcept override;
    STDMETHODIMP WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32 reserved, INT32 one,
                                    ItemRecord *record, INT32 copyright, INT32 exif, INT32 xmp, INT32 gps,
                                    INT32 iptc, INT32 anyGroup, INT32 processed) noexcept override;

private:
    CallRecord &m_record;
};

class FakeHost final : public ComObject<FakeHost, IHalvoraPublishingHost>
{
public:
    explicit FakeHost(CallRecord &record);

    struct Item
    {
        WideText Path;
        std::optional<WideText> Extensions;
    };
    std::vector<Item> Items;
    HRESULT ListResult = S_OK;
    bool ListCanBeLocked = true;
    ComPtr<FakeImageMetadata> Metadata;         // null: a host without a reader
    std::function<void(size_t)> OnItem;         // called when the record of an item is asked for

    HRESULT QueryFurther(REFIID iid, void **object) noexcept;

    STDMETHODIMP Reserved1() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved2() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetItemList(INT32 *count, HGLOBAL *items) noexcept override;
    STDMETHODIMP GetItemRecord(UINT64 item, ItemRecord *record) noexcept override;
    STDMETHODIMP Reserved3() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved4() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved5() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP WriteLogEntry(INT32 level, LPCWSTR source, LPCWSTR message) noexcept override;

private:
    CallRecord &m_record;
    GlobalMemoryOwner m_list;
};
