#include "host/window/PluginUse_win32.h"

#include "host/Apartment.h"
#include "host/PluginSession.h"

PluginUse::PluginUse(const CLSID &plugin, InitDataStore &store, ItemCollection pictures, Journal *journal,
                     LogSink log)
    : m_record(std::move(pictures)),
      m_journal(journal, JournalAccount::Of(ParseInitData(store.Content()).value_or(AccountData())), m_record,
                [log](const std::string &words) { log(LOG_LEVEL_WARNING, "halvora", words); }),
      m_host(PublishingHost::Make(m_record, log)),
      m_session(static_cast<IHalvoraPublishingHost *>(m_host.Get()), store, plugin)
{
    m_record.WatchBy([this](size_t item, bool isOver) { m_journal.ItemChanged(item, isOver); });
    m_host->NoteFilesBy(
        [this](size_t item, const std::filesystem::path &file) { m_journal.FileBegins(item, file); });
    m_host->StopBy(MostFailuresToConnect, [this] { Plugin().Cancel(FALSE); });
    m_host->PauseBy([this, log](std::chrono::seconds pause) {
        log(LOG_LEVEL_INFO, "halvora",
            "Flickr asks for a pause: going on in " + std::to_string(pause.count()) + " seconds.");
        m_servicePause.Wait(pause);
    });
}

void PluginUse::Cancel(bool abruptly)
{
    Plugin().Cancel(abruptly);
    m_servicePause.Cancel();
}

void PluginUse::RunEnds()
{
    m_host->RunEnds();
    m_record.RunEnds();
    m_journal.RunEnds();
}

RunThread::RunThread(PluginUse &use, HWND bar, HWND status, HWND window, UINT endMessage)
    : m_thread([&use, bar, status, window, endMessage] {
          const Apartment apartment;
          HRESULT result;
          {
              const UploadObservation observed(use.Host());
              result = use.Plugin().Publish(bar, status);
          }
          PostMessageW(window, endMessage, static_cast<WPARAM>(static_cast<ULONG>(result)), 0);
      })
{
}
