#include "plugin/UsageMetrics.h"

namespace
{
// Never destroyed: if the process ends without a Terminate, the component's module may be unloaded before
// this one, and Release would call into nothing. Static and not on the heap, where each unloading of this
// module would leak it.
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
