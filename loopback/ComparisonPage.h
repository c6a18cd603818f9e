// A page that shows uploads of the same title side by side: what of the picture and of its metadata arrived each
// time, measured against the upload whose run is called "As on disk".
#pragma once

#include "loopback/GalleryPage.h"
#include "loopback/PhotoIndex.h"

#include <string>
#include <vector>

namespace loopback
{

// `photos` begin with the newest, and so do the comparisons. Of several uploads with the same title and run only the
// newest is shown.
std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts);

} // namespace loopback
