#include "loopback/PhotoIndex.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char Collection[] = "photos";
constexpr std::int64_t FirstId = 53912345001;

template <class Record, class Visit>
void EachMember(Record &record, Visit visit)
{
    visit("id", record.id);
    visit("title", record.title);
    visit("description", record.description);
    visit("tags", record.tags);
    visit("is_public", record.isPublic);
    visit("is_friend", record.isFriend);
    visit("is_family", record.isFamily);
    visit("safety_level", record.safetyLevel);
    visit("content_type", record.contentType);
    visit("hidden", record.hidden);
    visit("async", record.isAsynchronous);
    visit("file_name", record.fileName);
    visit("mime_type", record.mimeType);
    visit("detected_type", record.detectedType);
    visit("stored_name", record.storedName);
    visit("sha256", record.sha256);
    visit("size", record.size);
    visit("uploaded", record.uploaded);
    visit("token", record.token);
    visit("user_agent", record.userAgent);
    visit("run", record.run);
}

PhotoRecord RecordOf(const Json &json)
{
    PhotoRecord record;
    EachMember(record, [&](const char *name, auto &member) { json.at(name).get_to(member); });
    return record;
}

} // namespace

Json PhotoJson(const PhotoRecord &record)
{
    Json json;
    EachMember(record, [&](const char *name, const auto &member) { json[name] = member; });
    return json;
}

std::int64_t PhotoIndex::ReserveId()
{
    const std::lock_guard lock(m_mutex);
    const auto last = m_documents.Find("ids", Collection);
    const std::int64_t id = last ? last->get<std::int64_t>() + 1 : FirstId;
    m_documents.Put("ids", Collection, id);
    return id;
}

void PhotoIndex::Add(const PhotoRecord &record)
{
    m_documents.Put(Collection, std::to_string(record.id), PhotoJson(record));
}

std::vector<PhotoRecord> PhotoIndex::All() const
{
    std::vector<PhotoRecord> records;
    for (const auto &document : m_documents.All(Collection))
    {
        records.push_back(RecordOf(document));
    }
    std::ranges::reverse(records);
    return records;
}

std::optional<PhotoRecord> PhotoIndex::Find(std::int64_t id) const
{
    const auto document = m_documents.Find(Collection, std::to_string(id));
    return document ? std::optional(RecordOf(*document)) : std::nullopt;
}

} // namespace loopback
