#include "host/window/PluginUse.h"

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
