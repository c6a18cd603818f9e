// The index of what was published: one record per photo.
// Thread-safe.
#pragma once

#include "database/Database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

// Every ticket of an asynchronous upload begins so.
inline constexpr char TicketPrefix[] = "2830-";

struct PhotoRecord
{
    std::int64_t id = 0;
    std::string title;
    std::string description;
    // As sent; SplitTags of UploadParameters.h separates them.
    std::string tags;
    bool isPublic = true;
    bool isFriend = false;
    bool isFamily = false;
    int safetyLevel = 1;
    int contentType = 1;
    int hidden = 1;
    // Empty for a synchronous upload.
    std::string ticket;
    // File name and type as the multipart body gave them.
    std::string fileName;
    std::string mimeType;
    // The type by the file's first bytes, and the name of the file in the store.
    std::string detectedType;
    std::string storedName;
    std::string sha256;
    std::int64_t size = 0;
    // Unix seconds.
    std::int64_t uploaded = 0;
    std::string token;
    std::string userAgent;
    std::int64_t connection = 0;
    // The account's "run" at the time of the upload.
    std::string run;
};

class PhotoIndex
{
public:
    explicit PhotoIndex(Database &database);

    // Returns an id that no photo has had.
    std::int64_t ReserveId();
    void Add(const PhotoRecord &record);

    // The newest first.
    std::vector<PhotoRecord> All() const;
    std::optional<PhotoRecord> Find(std::int64_t id) const;
    // The id of the photo that was uploaded with the ticket.
    std::optional<std::int64_t> FindByTicket(const std::string &ticket) const;
    bool HasContent(const std::string &sha256) const;
    void Clear();

private:
    Database &m_database;
};

} // namespace loopback
