// The gallery's HTML. Everything that came from outside is escaped; nothing is fetched from elsewhere.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/PhotoIndex.h"
#include "loopback/PhotoMetadata.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace loopback
{

using FactsOf = std::function<std::shared_ptr<const PhotoFacts>(const PhotoRecord &)>;

// How photos are called on the pages; HTML.
std::string TitleHtml(const PhotoRecord &photo);
// The picture, or what stands for it; HTML.
std::string PictureHtml(const PhotoRecord &photo);
// "2.3 MB"
std::string SizeText(std::int64_t bytes);

std::string OverviewPage(const Account &account, const std::vector<PhotoRecord> &photos, const FactsOf &facts);
std::string PhotoPage(const PhotoRecord &photo, const PhotoFacts &facts);
std::string MissingPage();

} // namespace loopback
