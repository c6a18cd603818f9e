// What was published: one record a photo in the index, and the tickets of asynchronous uploads.
// Thread-safe.
#pragma once

#include "loopback/Database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

struct PhotoRecord
{
    std::int64_t id = 0;
    std::string title;
    std::string description;
    // As sent; UploadParameters.h takes it apart.
    std::string tags;
    bool isPublic = true;
    bool isFriend = false;
    bool isFamily = false;
    int safetyLevel = 1;
    int contentType = 1;
    int hidden = 1;
    // Empty for an upload that waited for its photo id.
    std::string ticket;
    // As the multipart body named them.
    std::string fileName;
    std::string mimeType;
    // What the bytes are, and the name of the stored file within the store.
    std::string detectedType;
    std::string storedName;
    std::string sha256;
    std::int64_t size = 0;
    // Unix seconds.
    std::int64_t uploaded = 0;
    std::string token;
    std::string userAgent;
    std::int64_t connection = 0;
    // The account's "run" of that time.
    std::string run;
};

enum class TicketState
{
    Unknown,
    Open,
    Complete,
    Failed
};

struct TicketAnswer
{
    TicketState state = TicketState::Unknown;
    std::int64_t photoId = 0;
};

class PhotoIndex
{
public:
    explicit PhotoIndex(Database &database);

    // An id that no photo has had.
    std::int64_t ReserveId();
    void Add(const PhotoRecord &record);

    // The newest first.
    std::vector<PhotoRecord> All() const;
    std::optional<PhotoRecord> Find(std::int64_t id) const;
    bool HasContent(const std::string &sha256) const;
    void Clear();

    // A new ticket that closes at the given time (Unix milliseconds), with the photo or, when
    // photoId is 0, as a failure.
    std::string AddTicket(std::int64_t photoId, std::int64_t closes);
    TicketAnswer CheckTicket(const std::string &ticket, std::int64_t now) const;

private:
    Database &m_database;
};

} // namespace loopback
