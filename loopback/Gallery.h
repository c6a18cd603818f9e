// The web pages that show what was published, and the pictures themselves. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"
#include "loopback/UploadService.h"

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

} // namespace loopback
