// The web pages that show what was published, and the pictures themselves. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"
#include "loopback/PhotoMetadata.h"
#include "loopback/UploadService.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace loopback
{

class Gallery
{
public:
    Gallery(const AccountBook &accounts, const PhotoIndex &photos, const UploadService &uploads);

    // "/" is the overview, "/compare" shows uploads of one title side by side, "/photo/ID" is a photo's page,
    // "/photo/ID/file" its bytes.
    HttpReply Handle(const HttpRequest &request) const;

private:
    // Reads each file once, since a stored file never changes.
    std::shared_ptr<const PhotoFacts> Facts(const PhotoRecord &record) const;

    const AccountBook &m_accounts;
    const PhotoIndex &m_photos;
    const UploadService &m_uploads;
    mutable std::mutex m_mutex;
    mutable std::map<std::int64_t, std::shared_ptr<const PhotoFacts>> m_facts;
};

} // namespace loopback
