// The gallery's HTML. Everything that came from outside is escaped; nothing is fetched from elsewhere.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/PhotoIndex.h"
#include "loopback/PhotoMetadata.h"

#include <functional>
#include <string>
#include <vector>

namespace loopback
{

// `groupNames` gives the names of the metadata groups in a photo's file, for its card.
std::string OverviewPage(const Account &account, const std::vector<PhotoRecord> &photos,
                         const std::function<std::string(const PhotoRecord &)> &groupNames);
std::string PhotoPage(const PhotoRecord &photo, const std::vector<MetadataGroup> &metadata);
std::string MissingPage();

}
