// Runs the plug-in's Publish on a thread of its own, while the calling thread waits for the user's
// signals.
#pragma once

#include "host/LiveDisplay.h"
#include "host/SignalWatch_posix.h"

#include "HVRPublishToFlickr.h"
#include "WebComponents.h"

#include <functional>

struct RunEnd
{
    HRESULT result = E_UNEXPECTED; // of Publish
    bool cancelled = false;        // the user asked to stop
};

// observer learns what the service answers. The first interrupt lets the current item finish; the second stops it, as
// the first SIGTERM or SIGHUP does; the third ends the process. onCancel is called at each of them. Throws the
// HRESULT of windows that can't be made.
RunEnd RunPublication(IHalvoraPublishingPlugin &plugin, IUploadObserver &observer, LiveDisplay &display,
                      SignalWatch &signals, const std::function<void()> &onCancel);

// Waits between two runs. Returns false if the user cancels.
bool WaitBetweenRuns(std::chrono::seconds pause, LiveDisplay &display, SignalWatch &signals);
