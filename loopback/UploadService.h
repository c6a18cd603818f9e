// The upload endpoint: takes a multipart form apart as it streams in, checks it as the service does,
// and keeps the picture and its record. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/Admission.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"

#include <filesystem>
#include <mutex>

namespace loopback
{

class UploadService
{
public:
    // Pictures lie in "photos" of the store, those on their way in "incoming".
    UploadService(std::filesystem::path store, AccountBook &accounts, PhotoIndex &photos, Admission &admission);

    HttpReply Handle(HttpExchange &exchange);

    std::filesystem::path PathOf(const PhotoRecord &record) const;
    // Forgets every picture.
    void Clear();

private:
    struct Form;

    HttpReply Judge(const HttpRequest &request, Form &form);
    HttpReply Accept(PhotoRecord record, Form &form, bool isAsynchronous);

    std::filesystem::path m_photosFolder;
    std::filesystem::path m_incomingFolder;
    AccountBook &m_accounts;
    PhotoIndex &m_photos;
    Admission &m_admission;
    // Held from the look at limits and duplicates until the picture counts.
    std::mutex m_acceptance;
};

} // namespace loopback
