#include "plugin/UsageMetrics.h"

// Never destroyed: when the process ends without a Terminate, the component's own module may be gone
// before this one.
ComPtr<IUsageMetrics> &gUsageMetrics = *new ComPtr<IUsageMetrics>;

void CreateUsageMetrics() noexcept
{
    if (!gUsageMetrics)
    {
        CoCreateInstance(CLSID_UsageMetrics, nullptr, CLSCTX_ALL, __uuidof(IUsageMetrics),
                         gUsageMetrics.PutVoid());
    }
}
