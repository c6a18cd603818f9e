#include "host/PublishingHost.h"

#include "host/FileNames.h"
#include "host/ImageMetadata.h"
#include "host/JpegFile.h"
#include "host/MetadataWriting.h"
#include "host/PictureSource.h"
#include "host/RunAdvice.h"
#include "host/TextEncodings.h"

#include "account/ServiceReply.h"
#include "com/BstrOwner.h"
#include "com/SafeText.h"

#include <wincodec.h>

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

PublishingHost::PublishingHost(RunRecord &record, LogSink log, std::function<MetadataSupport()> support)
    : m_record(record),
      m_log(std::move(log)),
      m_support(std::move(support)),
      m_ahead(record.Items(), DecodePicture)
{
}

STDMETHODIMP PublishingHost::GetItemList(INT32 *count, HGLOBAL *items) noexcept
{
    if (count == nullptr || items == nullptr)
    {
        return E_INVALIDARG;
    }
    *count = 0;
    *items = nullptr;
    return AtBoundary([&] {
        const std::vector<size_t> waiting = m_record.NotTried();
        const size_t number = waiting.size();
        // GlobalLock fails for a block of 0 bytes.
        GlobalMemoryOwner list(GlobalAlloc(GMEM_MOVEABLE, std::max<size_t>(number, 1) * sizeof(UINT64)));
        auto *const handles = list ? static_cast<UINT64 *>(GlobalLock(list.Get())) : nullptr;
        if (handles == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        const GlobalLockOwner locked(list.Get());
        for (size_t i = 0; i < number; ++i)
        {
            handles[i] = waiting[i] + 1;
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
        m_ahead.ItemBegins(index);
        m_hasMoreItems = item < m_record.Items().size();
        const PictureItem &picture = m_record.Items()[index];
        m_undecided = picture.extensions.size() > 1 ? &picture : nullptr;
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
        NoteChoice(text);
        // The plug-in looks for a cancel when this returns, before the next item.
        const auto pause = level >= LOG_LEVEL_ERROR ? RequestedWait(text) : std::chrono::seconds(0);
        if (pause.count() != 0 && m_wait && m_hasMoreItems)
        {
            m_wait(pause);
        }
        if (m_stop && level >= LOG_LEVEL_ERROR && m_record.FailuresToConnect() >= m_mostFailures)
        {
            m_stop();
        }
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::OnUploadReply(HRESULT result, IUnknown *reply) noexcept
{
    return AtBoundary([&] {
        const auto document = ComPtr<IUnknown>(reply).As<IXMLDOMDocument2>();
        BstrOwner photo;
        BstrOwner ticket;
        if (SUCCEEDED(result) && document && ReadOutcome(document.Get()) == S_OK)
        {
            ReadNodeText(document.Get(), TEXT("/rsp/photoid"), photo);
            ReadNodeText(document.Get(), TEXT("/rsp/ticketid"), ticket);
            m_record.NoteIds({OneSafeLine(Utf8FromText(photo.View())), OneSafeLine(Utf8FromText(ticket.View()))});
        }
        return S_OK;
    });
}

// Of the files of one picture the plug-in publishes one. Its first entry that names a file tells which.
void PublishingHost::NoteChoice(const std::string &entry)
{
    const PictureItem *const picture = m_undecided;
    if (picture == nullptr)
    {
        return;
    }
    std::string chosen;
    std::string others;
    for (const std::filesystem::path &file : picture->Files())
    {
        std::string &names =
            entry.find("\"" + Utf8FromText(TextOfPath(file)) + "\"") != entry.npos ? chosen : others;
        names += (names.empty() ? "" : ", ") + ShownPath(file.filename());
    }
    if (!chosen.empty() && m_undecided.exchange(nullptr) != nullptr)
    {
        Tell(LOG_LEVEL_INFO, "Left out, since " + chosen + " is the same picture: " + others + ".");
    }
}

ComPtr<IWICBitmapSource> PublishingHost::ReadPicture(const std::filesystem::path &file, UINT longEdge)
{
    try
    {
        return MakePictureSource(m_ahead.Take(file, longEdge));
    }
    catch (const DecodingError &error)
    {
        m_record.NoteFault(error.Code(), error.what());
        ThrowHresult(error.Code());
    }
}

STDMETHODIMP PublishingHost::ReadImageMetadata(LPCWSTR path, INT32, INT32 longEdge, IWICBitmapSource **source,
                                               INT32 flags, ItemRecord *record) noexcept
{
    if (source != nullptr)
    {
        *source = nullptr;
    }
    const bool wantsPicture = flags == READ_METADATA_AND_PICTURE;
    if (path == nullptr || record == nullptr || longEdge < 0 || (!wantsPicture && flags != READ_METADATA_ONLY) ||
        (wantsPicture && source == nullptr))
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const std::filesystem::path file = PathOfText(path);
        m_lastRead = file;
        if (const auto item = m_record.Current(); item && m_fileBegins)
        {
            m_fileBegins(*item, file);
        }
        if (!CanReadMetadata() && !m_toldOfNoReading.exchange(true))
        {
            Tell(LOG_LEVEL_WARNING,
                 "This system's imaging component can't read the metadata of JPEG files: texts in "
                 "them aren't used, and pictures are taken as they lie.");
        }
        ImageTexts texts;
        const auto groups = std::make_shared<MetadataSnapshot>();
        const HRESULT read = ReadMetadata(file, texts, groups.get());
        ComPtr<IWICBitmapSource> picture;
        if (wantsPicture)
        {
            picture = ReadPicture(file, static_cast<UINT>(longEdge));
        }
        else
        {
            m_ahead.NoteUndecoded(file);
        }
        // A picture that can be decoded is published, without metadata that can't be read.
        if (FAILED(read) && (wantsPicture || read == WINCODEC_ERR_BADMETADATAHEADER))
        {
            Tell(LOG_LEVEL_WARNING, "The metadata of " + ShownPath(file) + " can't be read; none of it is used.");
        }
        else
        {
            ThrowIfFailed(read);
        }
        FillTexts(*record, texts);
        m_snapshots.Put(groups, *record);
        if (wantsPicture)
        {
            *source = picture.Detach();
        }
        return S_OK;
    });
}

STDMETHODIMP PublishingHost::WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32, INT32, ItemRecord *record,
                                                INT32 copyright, INT32 exif, INT32 xmp, INT32 gps, INT32 iptc,
                                                INT32, INT32 processed) noexcept
{
    if (writer == nullptr || record == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        // Not for a file that is sent as it is: it isn't changed, and looking into it takes time.
        if (LacksItsEndAlone(m_lastRead))
        {
            Tell(LOG_LEVEL_WARNING, ShownPath(m_lastRead) +
                                        " lacks the marker that ends a JPEG file, as if its last bytes "
                                        "were lost. All of its pixels are there, so it is published, "
                                        "with the marker.");
        }
        const MetadataSupport support = m_support();
        const NewFrame frame = processed != 0                           ? NewFrame::Processed
                               : support.copies == CopiedMetadata::None ? NewFrame::Intact
                                                                        : NewFrame::Copied;
        // What can't be taken out of a copy must not have got into it.
        if (frame == NewFrame::Copied && support.copies != CopiedMetadata::Removable)
        {
            Tell(LOG_LEVEL_WARNING,
                 "This system's imaging component copies metadata and can't take any out again, so "
                 "pictures can't be uploaded with their pixels intact. Send them as files or "
                 "processed.");
            return WINCODEC_ERR_UNSUPPORTEDOPERATION;
        }
        if (!support.writes && !m_toldOfNoWriting.exchange(true))
        {
            Tell(LOG_LEVEL_WARNING, "This system's imaging component can't write metadata: converted pictures are "
                                    "uploaded without any, "
                                    "and those that only their metadata turns upright stay as they lie.");
        }
        if (!support.writes && frame != NewFrame::Copied)
        {
            return S_OK;
        }
        const GroupSwitches switches = {copyright != 0, exif != 0, xmp != 0, gps != 0, iptc != 0};
        const std::string leftOut =
            WriteRecordMetadata(*writer, *record, m_snapshots, switches, frame,
                                [&](const std::string &words) { Tell(LOG_LEVEL_VERBOSE, words); });
        if (!leftOut.empty())
        {
            Tell(LOG_LEVEL_WARNING, "Some metadata of " + ShownPath(m_lastRead) +
                                        " are too long for the new file and were left out: " + leftOut + ".");
        }
        return S_OK;
    });
}
