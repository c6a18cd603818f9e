#include "loopback/PhotoIndex.h"

#include "com/Utf8.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

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

constexpr std::string_view Blanks = " \t\r\n";

struct NumberRule
{
    const char *name;
    int lowest;
    int highest;
    int PhotoRecord::*member;
};

constexpr NumberRule Numbers[] = {
    {"is_public", 0, 1, &PhotoRecord::isPublic},       {"is_friend", 0, 1, &PhotoRecord::isFriend},
    {"is_family", 0, 1, &PhotoRecord::isFamily},       {"safety_level", 1, 3, &PhotoRecord::safetyLevel},
    {"content_type", 1, 3, &PhotoRecord::contentType}, {"hidden", 1, 2, &PhotoRecord::hidden},
    {"async", 0, 1, &PhotoRecord::isAsynchronous},
};

std::string GeneralComplaint(const FormFields &fields)
{
    std::set<std::string> seen;
    for (const auto &[name, value] : fields)
    {
        if (!IsUtf8(name) || !IsUtf8(value))
        {
            return "the field " + RepairedUtf8(name) + " is not UTF-8";
        }
        if (!seen.insert(name).second)
        {
            return "the field " + name + " occurs twice";
        }
    }
    return {};
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

std::vector<std::string> SplitTags(std::string_view tags)
{
    std::vector<std::string> list;
    while (true)
    {
        tags.remove_prefix(std::min(tags.find_first_not_of(Blanks), tags.size()));
        if (tags.empty())
        {
            return list;
        }
        const bool isQuoted = tags.front() == '"';
        tags.remove_prefix(isQuoted ? 1 : 0);
        const auto end = std::min(isQuoted ? tags.find('"') : tags.find_first_of(Blanks), tags.size());
        if (tags.substr(0, end).find_first_not_of(Blanks) != std::string_view::npos)
        {
            list.emplace_back(tags.substr(0, end));
        }
        tags.remove_prefix(std::min(end + (isQuoted ? 1 : 0), tags.size()));
    }
}

std::string ReadUploadParameters(const FormFields &fields, PhotoRecord &record)
{
    record.title = FindField(fields, "title").value_or("");
    record.description = FindField(fields, "description").value_or("");
    record.tags = FindField(fields, "tags").value_or("");
    for (const auto &[name, lowest, highest, member] : Numbers)
    {
        const auto text = FindField(fields, name);
        const auto number = text ? ParseWholeNumber(*text) : record.*member;
        if (!number || *number < lowest || *number > highest)
        {
            return fmt::format("{} is not a number from {} to {}", name, lowest, highest);
        }
        record.*member = static_cast<int>(*number);
    }
    return GeneralComplaint(fields);
}

} // namespace loopback
