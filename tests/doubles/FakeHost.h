// A host whose list of items and metadata the test sets.
//
// Calls of the record: "log LEVEL MESSAGE", "list", "item N", "read PATH"; "list" and "read" can fail.
#pragma once

#include "com/ComObject.h"
#include "com/HandleOwner.h"
#include "tests/doubles/CallRecord.h"

#include "HostContract.h"

#include <functional>
#include <optional>

// Gives every picture the same metadata: the texts that are set, and with HasGroups also every other text
// and the data of the five groups.
class FakeImageMetadata final : public ComObject<FakeImageMetadata, IHalvoraImageMetadata>
{
public:
    explicit FakeImageMetadata(CallRecord &record) : m_record(record) {}

    std::optional<WideText> Caption;
    std::optional<WideText> Description;
    std::optional<WideText> Keywords;
    std::optional<WideText> ExifComment;
    bool HasGroups = false;

    // Also receives the calls "ReadImageMetadata" and "WriteImageMetadata", and says which of them fail; null
    // for a test that makes no new picture. The line of a writing has its flags, the size and resolution of
    // the record, and the groups that the record holds: "exif" as it was read, nothing for a blank one,
    // "exif?" for one that is neither.
    CallRecord *Calls = nullptr;

    // Makes the picture for a call that asks for one.
    std::function<ComPtr<IWICBitmapSource>()> Picture;

    STDMETHODIMP ReadImageMetadata(LPCWSTR path, INT32 reserved, INT32 longEdge, IWICBitmapSource **source,
                                   INT32 flags, ItemRecord *record) noexcept override;
    STDMETHODIMP WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32 reserved, INT32 one, ItemRecord *record,
                                    INT32 copyright, INT32 exif, INT32 xmp, INT32 gps, INT32 iptc, INT32 anyGroup,
                                    INT32 processed) noexcept override;

private:
    void Fill(ItemRecord &record) const;

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
    bool ListCanBeLocked = true;
    ComPtr<FakeImageMetadata> Metadata;
    ComPtr<IHalvoraImageMetadata> OtherMetadata; // in place of Metadata
    std::function<void(size_t)> OnItem;          // called when the record of an item is asked for

    bool IsListLocked() const
    {
        return m_list && (GlobalUnlock(m_list.Get()) || GetLastError() != ERROR_NOT_LOCKED);
    }

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
