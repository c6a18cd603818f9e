// One publication, watched from outside: the plug-in works on a thread of its own while this one waits
// for the user's signals.
#pragma once

#include "host/LiveDisplay.h"
#include "host/SignalWatch_posix.h"

#include "HVRPublishToFlickr.h"

struct RunEnd
{
    HRESULT result = E_UNEXPECTED; // of Publish
    bool cancelled = false;        // the user asked for the end
};

// The first interrupt lets the item that is running finish, the second stops it, as a termination does
// at once; the third ends the process. Throws the HRESULT of windows that can't be made.
RunEnd RunPublication(IHalvoraPublishingPlugin &plugin, LiveDisplay &display, SignalWatch &signals);
