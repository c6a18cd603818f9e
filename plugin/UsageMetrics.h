// The usage counter that the host's programs share: one for all objects of the process, null where the
// component isn't installed; the plug-in works without it. No lock.
#pragma once

#include "com/ComPtr.h"

#include "HostContract.h"

extern ComPtr<IUsageMetrics> &gUsageMetrics;

// Creates the counter if there is none yet. A missing component is no failure.
void CreateUsageMetrics() noexcept;
