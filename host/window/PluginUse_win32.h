// How the window uses a plug-in, and the thread on which it publishes.
#pragma once

#include "host/PluginSession.h"
#include "host/PublishingHost.h"
#include "host/RunCourse.h"
#include "host/RunJournal.h"
#include "host/RunRecord.h"

#include "HVRPublishToFlickr.h"

#include <windows.h>

#include <thread>

// One use of a plug-in: for a run with its pictures, or between runs without any.
class PluginUse
{
public:
    // journal may be null. Throws ProfileError, or the HRESULT of a plug-in that can't be created or initialized.
    PluginUse(const CLSID &plugin, InitDataStore &store, ItemCollection pictures, Journal *journal, LogSink log);

    IHalvoraPublishingPlugin &Plugin() const { return *m_session.Plugin(); }
    PublishingHost &Host() const { return *m_host.Get(); }
    RunRecord &Record() { return m_record; }

    // Cancels the run on another thread: after the picture on its way, or abruptly.
    void Cancel(bool abruptly);

    // The plug-in's last run is over: ends the host's own work ahead.
    void RunEnds();

    // The use is over; see PluginSession.
    StoreOutcome Finish(Storing storing) { return m_session.Finish(storing); }

private:
    RunRecord m_record;
    RunJournal m_journal;
    CancellablePause m_servicePause;
    ComPtr<PublishingHost> m_host;
    PluginSession m_session;
};

// Publish on a thread of its own, so that the window stays alive.
class RunThread
{
public:
    // Starts. The plug-in shows its progress in bar and status; when Publish has returned, endMessage is
    // posted to the window with the result as wParam.
    RunThread(PluginUse &use, HWND bar, HWND status, HWND window, UINT endMessage);

    // Only after endMessage has come: the plug-in waits for the window's thread whenever it sends to it.
    ~RunThread() { m_thread.join(); }
    RunThread(const RunThread &) = delete;
    RunThread &operator=(const RunThread &) = delete;

private:
    std::thread m_thread;
};
