#include "loopback/UploadParameters.h"

#include "com/Utf8.h"

#include <set>

namespace loopback
{

namespace
{

constexpr std::string_view Blanks = " \t\r\n";

// Reads a number from lowest to highest; sets the complaint if the field is anything else.
int ReadNumber(const FormFields &fields, const char *name, int lowest, int highest, int initial,
               std::string &complaint)
{
    const auto text = FindField(fields, name);
    if (!text)
    {
        return initial;
    }
    const auto number = ParseWholeNumber(*text);
    if (!number || *number < lowest || *number > highest)
    {
        complaint = std::string(name) + " is not a number from " + std::to_string(lowest) + " to " +
                    std::to_string(highest);
        return initial;
    }
    return static_cast<int>(*number);
}

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

UploadParameters ReadUploadParameters(const FormFields &fields)
{
    UploadParameters parameters;
    PhotoRecord &record = parameters.record;
    std::string &complaint = parameters.complaint;
    record.title = FindField(fields, "title").value_or("");
    record.description = FindField(fields, "description").value_or("");
    record.tags = FindField(fields, "tags").value_or("");
    record.isPublic = ReadNumber(fields, "is_public", 0, 1, 1, complaint);
    record.isFriend = ReadNumber(fields, "is_friend", 0, 1, 0, complaint);
    record.isFamily = ReadNumber(fields, "is_family", 0, 1, 0, complaint);
    record.safetyLevel = ReadNumber(fields, "safety_level", 1, 3, 1, complaint);
    record.contentType = ReadNumber(fields, "content_type", 1, 3, 1, complaint);
    record.hidden = ReadNumber(fields, "hidden", 1, 2, 1, complaint);
    record.isAsynchronous = ReadNumber(fields, "async", 0, 1, 0, complaint);
    if (complaint.empty())
    {
        complaint = GeneralComplaint(fields);
    }
    return parameters;
}

} // namespace loopback
