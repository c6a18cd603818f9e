#include "publish/OutputResolution.h"

#include "com/Hresult.h"

#include <cmath>

namespace
{
// For a size without a resolution: the 72 dpi of a screen, as printing programs assume it.
constexpr double ScreenDpi = 72.0;
} // namespace

Resolution ChooseResolution(const UploadOptions &options, IWICBitmapSource *source)
{
    const double wanted = options.printDpi != 0.0 ? std::fabs(options.printDpi) : ScreenDpi;
    if (options.mode == SendProcessed && options.longEdgePixels != 0)
    {
        return {wanted, wanted};
    }
    Resolution own{};
    ThrowIfFailed(source->GetResolution(&own.X, &own.Y));
    return own.X >= 1.0 && own.Y >= 1.0 ? own : Resolution{wanted, wanted};
}
