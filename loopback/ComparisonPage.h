// Uploads of the same title side by side: what of a picture, and of what it tells, came through each
// time.
#pragma once

#include "loopback/GalleryPage.h"
#include "loopback/PhotoIndex.h"

#include <string>
#include <vector>

namespace loopback
{

// `photos` are the newest first; in each comparison the oldest is on the left.
std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts);

} // namespace loopback
