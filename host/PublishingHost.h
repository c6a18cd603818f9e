// The host as the plug-in sees it: the items of a run, their records, a log, and the metadata of
// picture files. One object answers both of the host's interfaces, from any thread.
#pragma once

#include "host/ImagingTrial.h"
#include "host/MetadataSnapshots.h"
#include "host/PicturesAhead.h"
#include "host/RunRecord.h"

#include "com/ComObject.h"
#include "com/HandleOwner.h"

#include "HostContract.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

// level, source and message as the plug-in gave them, in UTF-8. Any thread.
using LogSink = std::function<void(int level, const std::string &source, const std::string &message)>;

class PublishingHost final : public ComObject<PublishingHost, IHalvoraPublishingHost, IHalvoraImageMetadata>
{
public:
    // The record must outlive every run with this host. Item handles are 1 and up, in the record's order.
    // support tells what the imaging component does; it is asked at each writing of metadata.
    PublishingHost(RunRecord &record, LogSink log, std::function<MetadataSupport()> support = TryWritingMetadata);

    STDMETHODIMP Reserved1() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved2() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetItemList(INT32 *count, HGLOBAL *items) noexcept override;
    STDMETHODIMP GetItemRecord(UINT64 item, ItemRecord *record) noexcept override;
    STDMETHODIMP Reserved3() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved4() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved5() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP WriteLogEntry(INT32 level, LPCWSTR source, LPCWSTR message) noexcept override;

    STDMETHODIMP ReadImageMetadata(LPCWSTR path, INT32 reserved, INT32 longEdge, IWICBitmapSource **source,
                                   INT32 flags, ItemRecord *record) noexcept override;
    STDMETHODIMP WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32 reserved, INT32 one, ItemRecord *record,
                                    INT32 copyright, INT32 exif, INT32 xmp, INT32 gps, INT32 iptc, INT32 anyGroup,
                                    INT32 processed) noexcept override;

    // wait is called on the plug-in's thread when the service asks for a pause and further items follow. It
    // returns when the pause is over or the user cancels. Without it nothing waits.
    void PauseBy(std::function<void(std::chrono::seconds)> wait) { m_wait = std::move(wait); }

    // Ends the work ahead of the plug-in's requests. To be called when a run is over, also a cancelled one.
    void RunEnds() { m_ahead.Stop(); }

private:
    void Tell(int level, const std::string &text) { m_log(level, "halvora", text); }
    ComPtr<IWICBitmapSource> ReadPicture(const std::filesystem::path &file, UINT longEdge);

    void NoteChoice(const std::string &entry);

    RunRecord &m_record;
    const LogSink m_log;
    const std::function<MetadataSupport()> m_support;
    std::function<void(std::chrono::seconds)> m_wait;
    GlobalMemoryOwner m_list;
    MetadataSnapshots m_snapshots;
    std::filesystem::path m_lastRead; // whose metadata are written next; the plug-in's thread only
    PicturesAhead m_ahead;
    std::atomic<const PictureItem *> m_undecided = nullptr; // the item whose file the plug-in hasn't named yet
    std::atomic<bool> m_hasMoreItems = false;
    std::atomic<bool> m_toldOfNoReading = false;
    std::atomic<bool> m_toldOfNoWriting = false;
};
