// The upload endpoint: parses a multipart form as it arrives, checks it as the real service does, and stores
// the picture and its record. Thread-safe.
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
    // Keeps the pictures in the store's folder "photos", and unfinished uploads in "incoming".
    UploadService(std::filesystem::path store, AccountBook &accounts, PhotoIndex &photos, Admission &admission);

    HttpReply Handle(HttpExchange &exchange);

    std::filesystem::path PathOf(const PhotoRecord &record) const;
    // Deletes every picture and its record.
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
    // Held from the check of limits and duplicates until the picture is recorded, so that simultaneous uploads
    // can't pass the check together.
    std::mutex m_acceptance;
};

} // namespace loopback
