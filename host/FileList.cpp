#include "host/FileList.h"

#include "host/FileNames.h"

#include "com/SafeText.h"

#include <algorithm>
#include <array>
#include <optional>

namespace
{
// In the order of ItemEnd.
constexpr std::array<const char *, 5> Words = {"not-tried", "published", "handed-in", "unknown", "failed"};
constexpr std::array Done = {"published", "handed-in", PorcelainLeftOut};

struct Fields
{
    std::string_view outcome;
    std::string_view file;
};

// Nothing if the line is a file's name alone. A name may have tabs too, so the others are counted from both ends.
std::optional<Fields> FieldsOf(std::string_view line)
{
    const size_t first = line.find('\t');
    const size_t last = line.rfind('\t');
    const size_t second = last == line.npos || last == 0 ? line.npos : line.rfind('\t', last - 1);
    if (second == line.npos || second <= first)
    {
        return std::nullopt;
    }
    const Fields fields = {line.substr(0, first), line.substr(first + 1, second - first - 1)};
    const bool isOutcome = std::ranges::find(Words, fields.outcome) != Words.end() ||
                           fields.outcome == PorcelainLeftOut || fields.outcome == PorcelainToSend;
    return isOutcome ? std::optional(fields) : std::nullopt;
}
} // namespace

const char *PorcelainWord(ItemEnd end)
{
    return Words.at(static_cast<size_t>(end));
}

std::string PorcelainLine(const char *outcome, const std::filesystem::path &file, std::string_view id,
                          std::string_view reason, char end)
{
    return std::string(outcome) + "\t" + NameBytes(file) + "\t" + OneSafeLine(id) + "\t" + OneSafeLine(reason) +
           end;
}

std::vector<std::filesystem::path> FilesOfList(std::string_view list, char end)
{
    std::vector<std::filesystem::path> files;
    while (!list.empty())
    {
        const std::string_view line = list.substr(0, list.find(end));
        list.remove_prefix(std::min(line.size() + 1, list.size()));
        const auto fields = FieldsOf(line);
        const bool isDone = fields && std::ranges::find(Done, fields->outcome) != Done.end();
        if (!line.empty() && !isDone)
        {
            files.push_back(PathOfNameBytes(std::string(fields ? fields->file : line)));
        }
    }
    return files;
}
