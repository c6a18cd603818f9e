// The pages for people: what was published, and the pictures themselves. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"
#include "loopback/UploadService.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace loopback
{

class Gallery
{
public:
    Gallery(const AccountBook &accounts, const PhotoIndex &photos, const UploadService &uploads);

    // "/" is the overview, "/photo/ID" a photo's page, "/photo/ID/file" its bytes.
    HttpReply Handle(const HttpRequest &request) const;

private:
    // Names of the groups in the photo's file; read once, since a stored file never changes.
    std::string GroupNames(const PhotoRecord &record) const;

    const AccountBook &m_accounts;
    const PhotoIndex &m_photos;
    const UploadService &m_uploads;
    mutable std::mutex m_mutex;
    mutable std::map<std::int64_t, std::string> m_groupNames;
};

}
