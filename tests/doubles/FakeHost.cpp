#include "tests/doubles/FakeHost.h"

#include "core/BstrOwner.h"

#include <algorithm>

namespace
{
// Handles mean nothing to the plug-in; these are no small numbers and no indices.
constexpr UINT64 firstHandle = 0x1'0000'0007;

BSTR TextFor(const std::optional<WideText> &text)
{
    return text ? BstrOwner(WideView(*text)).Detach() : nullptr;
}
} // namespace

HRESULT FakeImageMetadata::ReadImageMetadata(LPCWSTR path, INT32, INT32 longEdge, IWICBitmapSource **source,
                                             INT32 flags, ItemRecord *record) noexcept
{
    const bool isTextsOnly = source == nullptr && flags == READ_METADATA_ONLY && longEdge == 0;
    m_record.Add("read " + Narrow(path) + (isTextsOnly ? "" : " with the picture"));
    if (SUCCEEDED(Result))
    {
        record->Iptc.Texts[IPTC_TEXT_CAPTION] = TextFor(Caption);
        record->Iptc.Texts[IPTC_TEXT_DESCRIPTION] = TextFor(Description);
        record->Iptc.Texts[IPTC_TEXT_KEYWORDS] = TextFor(Keywords);
        record->ExifComment = TextFor(ExifComment);
    }
    return Result;
}

HRESULT FakeImageMetadata::WriteImageMetadata(IWICMetadataQueryWriter *, INT32, INT32, ItemRecord *, INT32, INT32,
                                              INT32, INT32, INT32, INT32, INT32) noexcept
{
    return E_NOTIMPL;
}

FakeHost::FakeHost(CallRecord &record) : Metadata(FakeImageMetadata::Make(record)), m_record(record) {}

HRESULT FakeHost::QueryFurther(REFIID iid, void **object) noexcept
{
    if (iid == __uuidof(IHalvoraImageMetadata) && Metadata)
    {
        return Metadata->QueryInterface(iid, object);
    }
    return E_NOINTERFACE;
}

HRESULT FakeHost::GetItemList(INT32 *count, HGLOBAL *items) noexcept
{
    m_record.Add("list");
    if (FAILED(ListResult))
    {
        return ListResult;
    }
    *count = static_cast<INT32>(Items.size());
    if (!ListCanBeLocked)
    {
        *items = nullptr;
        return S_OK;
    }
    m_list = GlobalMemoryOwner(GlobalAlloc(GMEM_MOVEABLE, std::max<size_t>(Items.size(), 1) * sizeof(UINT64)));
    auto *handles = static_cast<UINT64 *>(GlobalLock(m_list.Get()));
    for (size_t i = 0; i < Items.size(); ++i)
    {
        handles[i] = firstHandle + i;
    }
    GlobalUnlock(m_list.Get());
    *items = m_list.Get();
    return S_OK;
}

HRESULT FakeHost::GetItemRecord(UINT64 item, ItemRecord *record) noexcept
{
    const size_t index = static_cast<size_t>(item - firstHandle);
    m_record.Add("item " + std::to_string(index));
    if (OnItem)
    {
        OnItem(index);
    }
    record->Path = BstrOwner(WideView(Items.at(index).Path)).Detach();
    record->Extensions = TextFor(Items.at(index).Extensions);
    // The result says nothing to the plug-in.
    return E_FAIL;
}

HRESULT FakeHost::WriteLogEntry(INT32 level, LPCWSTR source, LPCWSTR message) noexcept
{
    static const char *const names[] = {"verbose", "info", "warning", "error", "fatal"};
    const bool isKnown = level >= 0 && level < 5 && WideView(source) == TEXT("Flickr");
    m_record.Add("log " + std::string(isKnown ? names[level] : "?") + " " + Narrow(message));
    return E_FAIL;
}
