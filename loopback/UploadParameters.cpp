#include "loopback/UploadParameters.h"

#include "com/Utf8.h"

#include <fmt/format.h>

#include <set>

namespace loopback
{

namespace
{

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
