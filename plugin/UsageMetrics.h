// The host family's usage counter, shared by all objects of the process. Null without the component;
// the plug-in works without it. Not locked.
#pragma once

#include "com/ComPtr.h"

#include "HostContract.h"

extern ComPtr<IUsageMetrics> &gUsageMetrics;

// Creates the counter if there is none yet. That the component may be missing is no failure.
void CreateUsageMetrics() noexcept;
