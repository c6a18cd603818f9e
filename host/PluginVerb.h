// What a click on a link of the plug-in's state line starts.
#pragma once

#include "com/WideText.h"

#include "HVRPublishToFlickr.h"

// Calls Configure with a window to belong to and without parameters, and returns its result. Throws the
// HRESULT of a window that can't be made.
HRESULT RunVerb(IHalvoraPublishingPlugin &plugin, WideText verb);
