#include "host/LinkText.h"

#include <utility>

namespace
{
constexpr std::pair<std::string_view, std::string_view> Commands[] = {
    {"authorize", "halvora authorize"},
    {"settings", "halvora settings"},
};

std::string_view CommandOf(std::string_view id)
{
    for (const auto &[name, command] : Commands)
    {
        if (name == id)
        {
            return command;
        }
    }
    return {};
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
        size_t taken = 1;
        char character = text.front();
        for (const auto &[entity, meaning] : Entities)
        {
            if (text.starts_with(entity))
            {
                taken = entity.size();
                character = meaning;
            }
        }
        plain += character;
        text.remove_prefix(taken);
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
