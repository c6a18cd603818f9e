#include "host/PublishingHost.h"

#include "host/FileNames.h"
#include "host/ImageMetadata.h"
#include "host/TextEncodings.h"

#include "core/BstrOwner.h"

namespace
{
WideText JoinExtensions(const PictureItem &item)
{
    WideText joined;
    for (const std::string &extension : item.extensions)
    {
        joined += joined.empty() ? WideText() : WideText(TEXT(";"));
        joined += TextOfPath(extension);
    }
    return joined;
}
} // namespace

PublishingHost::PublishingHost(RunRecord &record, LogSink log) : m_record(record), m_log(std::move(log)) {}

STDMETHODIMP PublishingHost::GetItemList(INT32 *count, HGLOBAL *items) noexcept
{
    if (count == nullptr || items == nullptr)
    {
        return E_INVALIDARG;
    }
    *count = 0;
    *items = nullptr;
    return AtBoundary([&] {
        const size_t number = m_record.Items().size();
        // Memory of no size could not be locked.
        GlobalMemoryOwner list(GlobalAlloc(GMEM_MOVEABLE, std::max<size_t>(number, 1) * sizeof(UINT64)));
        auto *const handles = list ? static_cast<UINT64 *>(GlobalLock(list.Get())) : nullptr;
        if (handles == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        const GlobalLockOwner locked(list.Get());
        for (size_t i = 0; i < number; ++i)
        {
            handles[i] = i + 1;
        }
        m_list = std::move(list);
        *items = m_list.Get();
        *count = static_cast<INT32>(number);
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::GetItemRecord(UINT64 item, ItemRecord *record) noexcept
{
    if (record == nullptr || item == 0 || item > m_record.Items().size())
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const size_t index = static_cast<size_t>(item - 1);
        m_record.ItemBegins(index);
        const PictureItem &picture = m_record.Items()[index];
        BstrOwner path(TextOfPath(picture.stem));
        BstrOwner extensions(JoinExtensions(picture));
        record->Path = path.Detach();
        record->Extensions = extensions.Detach();
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::WriteLogEntry(INT32 level, LPCWSTR source, LPCWSTR message) noexcept
{
    return AtBoundary([&] {
        const std::string text = Utf8FromText(message != nullptr ? WideView(message) : WideView());
        m_record.NoteEntry(level, text);
        m_log(level, Utf8FromText(source != nullptr ? WideView(source) : WideView()), text);
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::ReadImageMetadata(LPCWSTR path, INT32, INT32, IWICBitmapSource **source, INT32 flags,
                                               ItemRecord *record) noexcept
{
    if (source != nullptr)
    {
        *source = nullptr;
    }
    if (path == nullptr || record == nullptr)
    {
        return E_INVALIDARG;
    }
    if (flags != READ_METADATA_ONLY)
    {
        return flags == READ_METADATA_AND_PICTURE ? E_NOTIMPL : E_INVALIDARG;
    }
    return AtBoundary([&] {
        ImageTexts texts;
        ThrowIfFailed(ReadImageTexts(PathOfText(path), texts));
        FillTexts(*record, texts);
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::WriteImageMetadata(IWICMetadataQueryWriter *, INT32, INT32, ItemRecord *, INT32, INT32,
                                                INT32, INT32, INT32, INT32, INT32) noexcept
{
    return E_NOTIMPL;
}
