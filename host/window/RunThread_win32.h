// Publish on a thread of its own, so that the window stays alive.
#pragma once

#include "HVRPublishToFlickr.h"

#include <windows.h>

#include <thread>

class RunThread
{
public:
    // Starts. The plug-in tells its progress to bar and status, and when Publish has returned, endMessage is
    // posted to the window with the result as wParam.
    RunThread(IHalvoraPublishingPlugin &plugin, HWND bar, HWND status, HWND window, UINT endMessage);

    // Only after endMessage has come: the plug-in waits for the window's thread whenever it sends to it.
    ~RunThread() { m_thread.join(); }
    RunThread(const RunThread &) = delete;
    RunThread &operator=(const RunThread &) = delete;

private:
    std::thread m_thread;
};
