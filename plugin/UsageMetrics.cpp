#include "plugin/UsageMetrics.h"

namespace
{
// Never destroyed: when the process ends without a Terminate, the component's own module may be gone
// before this one. Not on the heap either, which would keep it when this module is unloaded.
union UndestroyedPointer
{
    UndestroyedPointer() noexcept : pointer() {}
    ~UndestroyedPointer() {}

    ComPtr<IUsageMetrics> pointer;
};
UndestroyedPointer usageMetrics;
} // namespace

ComPtr<IUsageMetrics> &gUsageMetrics = usageMetrics.pointer;

void CreateUsageMetrics() noexcept
{
    if (!gUsageMetrics)
    {
        CoCreateInstance(CLSID_UsageMetrics, nullptr, CLSCTX_ALL, __uuidof(IUsageMetrics),
                         gUsageMetrics.PutVoid());
    }
}
