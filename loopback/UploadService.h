// The upload endpoint: checks a form as the real service does, and stores the picture and its record. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/Admission.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"
#include "loopback/UploadForm.h"

#include <filesystem>

namespace loopback
{

class UploadService
{
public:
    // Keeps the pictures in the store's folder "photos", and unfinished uploads in "incoming".
    UploadService(std::filesystem::path store, AccountBook &accounts, PhotoIndex &photos, Admission &admission);

    const std::filesystem::path &IncomingFolder() const { return m_incomingFolder; }

    HttpReply Handle(const HttpRequest &request, UploadForm &form);

    std::filesystem::path PathOf(const PhotoRecord &record) const;

private:
    HttpReply Accept(PhotoRecord record, IncomingFile &photo);

    std::filesystem::path m_photosFolder;
    std::filesystem::path m_incomingFolder;
    AccountBook &m_accounts;
    PhotoIndex &m_photos;
    Admission &m_admission;
};

} // namespace loopback
