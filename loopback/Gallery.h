// The web pages that show what was published, and the pictures themselves. Everything that a client sent is escaped; the
// pages load nothing from other hosts. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"
#include "loopback/PhotoMetadata.h"
#include "loopback/UploadService.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace loopback
{

class Gallery
{
public:
    Gallery(const AccountBook &accounts, const PhotoIndex &photos, const UploadService &uploads)
        : m_accounts(accounts), m_photos(photos), m_uploads(uploads)
    {
    }

    // "/" is the overview, "/compare" shows uploads of one title side by side, "/photo/ID" is a photo's page,
    // "/photo/ID/file" its bytes.
    HttpReply Handle(const HttpRequest &request) const;

private:
    const AccountBook &m_accounts;
    const PhotoIndex &m_photos;
    const UploadService &m_uploads;
};

using FactsOf = std::function<PhotoFacts(const PhotoRecord &)>;

// A page with the gallery's header; heading and main are HTML, `style` is CSS beyond the gallery's own.
std::string GalleryFrame(const std::string &title, const std::string &heading, const std::string &main,
                         const std::string &style = "");

// A photo's title, or what the pages show for an untitled one; HTML.
std::string TitleHtml(const PhotoRecord &photo);
// The picture, or a placeholder if browsers can't show its format; HTML.
std::string PictureHtml(const PhotoRecord &photo);
// "2.3 MB"
std::string SizeText(std::int64_t bytes);

std::string OverviewPage(const Account &account, const std::vector<PhotoRecord> &photos, const FactsOf &facts);
std::string PhotoPage(const PhotoRecord &photo, const PhotoFacts &facts);
std::string MissingPage();

// Uploads of the same title side by side: what of the picture and of its metadata arrived each time, measured against
// the upload whose run is called "As on disk". `photos` begin with the newest, and so do the comparisons. Of several
// uploads with the same title and run only the newest is shown.
std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts);

} // namespace loopback
