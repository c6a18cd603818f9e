#include "host/window/PluginUse_win32.h"

#include "host/Apartment_win32.h"

PluginUse::PluginUse(const CLSID &plugin, InitDataStore &store, ItemCollection pictures, LogSink log)
    : m_record(std::move(pictures)),
      m_host(PublishingHost::Make(m_record, std::move(log))),
      m_session(static_cast<IHalvoraPublishingHost *>(m_host.Get()), store, plugin)
{
}

void PluginUse::RunEnds()
{
    m_host->RunEnds();
    m_record.RunEnds();
}

RunThread::RunThread(IHalvoraPublishingPlugin &plugin, HWND bar, HWND status, HWND window, UINT endMessage)
    : m_thread([&plugin, bar, status, window, endMessage] {
          const Apartment apartment;
          const HRESULT result = plugin.Publish(bar, status);
          PostMessageW(window, endMessage, static_cast<WPARAM>(static_cast<ULONG>(result)), 0);
      })
{
}
