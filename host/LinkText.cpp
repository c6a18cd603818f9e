#include "host/LinkText.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr std::pair<std::string_view, std::string_view> Commands[] = {
    {"authorize", "halvora authorize"},
    {"settings", "halvora settings"},
};

std::string_view CommandOf(std::string_view id)
{
    const auto *const found =
        std::ranges::find(Commands, id, &std::pair<std::string_view, std::string_view>::first);
    return found != std::end(Commands) ? found->second : std::string_view();
}

std::string_view AttributeOf(std::string_view tag, std::string_view name)
{
    const std::string opening = " " + std::string(name) + "=\"";
    const auto start = tag.find(opening);
    if (start == tag.npos)
    {
        return {};
    }
    tag.remove_prefix(start + opening.size());
    return tag.substr(0, tag.find('"'));
}

std::string WithoutEntities(std::string_view text)
{
    static constexpr std::pair<std::string_view, char> Entities[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}};
    std::string plain;
    while (!text.empty())
    {
        const auto *const found =
            std::ranges::find_if(Entities, [&](const auto &entity) { return text.starts_with(entity.first); });
        plain += found != std::end(Entities) ? found->second : text.front();
        text.remove_prefix(found != std::end(Entities) ? found->first.size() : 1);
    }
    return plain;
}
} // namespace

std::string LinksAsText(std::string_view line)
{
    constexpr std::string_view closing = "</a>";
    std::string text;
    for (;;)
    {
        const auto start = line.find("<a ");
        const auto opened = line.find('>', start);
        const auto end = line.find(closing, opened);
        if (start == line.npos || opened == line.npos || end == line.npos)
        {
            return text + WithoutEntities(line);
        }
        text += WithoutEntities(line.substr(0, start));
        const std::string words = WithoutEntities(line.substr(opened + 1, end - opened - 1));
        const std::string_view command = CommandOf(AttributeOf(line.substr(start, opened - start), "id"));
        text += command.empty() ? words : "[" + words + ": " + std::string(command) + "]";
        line.remove_prefix(end + closing.size());
    }
}
