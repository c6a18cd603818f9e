// The index of what was published: one record per photo.
// Thread-safe.
#pragma once

#include "loopback/Documents.h"
#include "loopback/FormFields.h"

#include <cstdint>
#include <mutex>
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
    // As sent; SplitTags separates them.
    std::string tags;
    // 0 or 1
    int isPublic = 1;
    int isFriend = 0;
    int isFamily = 0;
    int safetyLevel = 1;
    int contentType = 1;
    int hidden = 1;
    // 0 or 1
    int isAsynchronous = 0;
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
    // The account's "run" at the time of the upload.
    std::string run;
};

// Every member with its name, as the index and the administration interface have it.
Json PhotoJson(const PhotoRecord &record);

class PhotoIndex
{
public:
    explicit PhotoIndex(Documents &documents) : m_documents(documents) {}

    // Returns an id that no photo has had.
    std::int64_t ReserveId();
    void Add(const PhotoRecord &record);

    // The newest first.
    std::vector<PhotoRecord> All() const;
    std::optional<PhotoRecord> Find(std::int64_t id) const;

private:
    Documents &m_documents;
    std::mutex m_mutex;
};

// White space separates tags; a tag in double quotes may contain blanks.
std::vector<std::string> SplitTags(std::string_view tags);

// Sets the record's members from title to isAsynchronous; those whose field is absent keep their defaults. Returns what
// is wrong with the fields, or an empty text.
std::string ReadUploadParameters(const FormFields &fields, PhotoRecord &record);

} // namespace loopback
