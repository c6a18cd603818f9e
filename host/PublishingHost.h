// The host as the plug-in sees it: the items of a run, their records, a log, and the metadata of
// picture files; and as the web component sees it, which tells what the service answered. One object answers all of
// the host's interfaces, from any thread.
#pragma once

#include "host/ImagingTrial.h"
#include "host/MetadataSnapshots.h"
#include "host/PicturesAhead.h"
#include "host/RunRecord.h"

#include "com/ComObject.h"
#include "com/HandleOwner.h"

#include "HostContract.h"
#include "WebComponents.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

// level, source and message as the plug-in gave them, in UTF-8. Any thread.
using LogSink = std::function<void(int level, const std::string &source, const std::string &message)>;

class PublishingHost final
    : public ComObject<PublishingHost, IHalvoraPublishingHost, IHalvoraImageMetadata, IUploadObserver>
{
public:
    // The record must outlive every run with this host. Item handles are 1 and up, in the record's order; a run gets
    // those of the items that weren't tried yet.
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

    STDMETHODIMP OnUploadReply(HRESULT result, IUnknown *reply) noexcept override;

    // begins is called on the plug-in's thread before it gets a file of the item that is running.
    void NoteFilesBy(std::function<void(size_t index, const std::filesystem::path &file)> begins)
    {
        m_fileBegins = std::move(begins);
    }

    // stop is called on the plug-in's thread when so many items failed in a row since there was no connection.
    void StopBy(size_t failures, std::function<void()> stop)
    {
        m_mostFailures = failures;
        m_stop = std::move(stop);
    }

    // wait is called on the plug-in's thread when the service asks for a pause and further items follow. It
    // returns when the pause is over or the user cancels.
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
    std::function<void(size_t, const std::filesystem::path &)> m_fileBegins;
    std::function<void()> m_stop;
    size_t m_mostFailures = 0;
    GlobalMemoryOwner m_list;
    MetadataSnapshots m_snapshots;
    std::filesystem::path m_lastRead; // whose metadata are written next; the plug-in's thread only
    PicturesAhead m_ahead;
    std::atomic<const PictureItem *> m_undecided = nullptr; // the item whose file the plug-in hasn't named yet
    std::atomic<bool> m_hasMoreItems = false;
    std::atomic<bool> m_toldOfNoReading = false;
    std::atomic<bool> m_toldOfNoWriting = false;
};
