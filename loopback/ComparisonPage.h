// A page that shows uploads of the same title side by side: which of the picture and of its metadata
// arrived each time.
#pragma once

#include "loopback/GalleryPage.h"
#include "loopback/PhotoIndex.h"

#include <string>
#include <vector>

namespace loopback
{

// `photos` begin with the newest; in each comparison the oldest is on the left.
std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts);

} // namespace loopback
