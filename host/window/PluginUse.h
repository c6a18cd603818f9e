// One use of a plug-in by the window: for a run with its pictures, or between runs without any.
#pragma once

#include "host/PluginSession.h"
#include "host/PublishingHost.h"
#include "host/RunRecord.h"

class PluginUse
{
public:
    // Throws ProfileError, or the HRESULT of a plug-in that can't be created or initialized.
    PluginUse(const CLSID &plugin, InitDataStore &store, ItemCollection pictures, LogSink log);

    IHalvoraPublishingPlugin &Plugin() const { return *m_session.Plugin(); }
    RunRecord &Record() { return m_record; }

    // The run is over: ends the host's own work ahead.
    void RunEnds();

    // The use is over; see PluginSession.
    StoreOutcome Finish(Storing storing) { return m_session.Finish(storing); }

private:
    RunRecord m_record;
    ComPtr<PublishingHost> m_host;
    PluginSession m_session;
};
