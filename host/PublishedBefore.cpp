#include "host/PublishedBefore.h"

#include "host/FileNames.h"

#include <algorithm>

namespace
{
std::string WordsFor(const JournalEntry &entry, const PictureItem &item)
{
    const bool isItself = std::ranges::count(item.Files(), entry.file.path) > 0;
    const std::string when = entry.LocalTime() + (isItself ? "" : " as " + ShownPath(entry.file.path));
    switch (entry.outcome)
    {
    case JournalOutcome::Published:
        return "was published on " + when;
    case JournalOutcome::HandedIn:
        return "was handed in on " + when;
    default:
        return "was being sent on " + when + ", and how that ended isn't known";
    }
}
} // namespace

std::vector<std::optional<JournalEntry>> FindPublished(const std::vector<PictureItem> &items, Journal &journal,
                                                       const JournalAccount &account,
                                                       const std::function<bool()> &goesOn)
{
    std::vector<std::optional<JournalEntry>> entries(items.size());
    for (size_t i = 0; i < items.size() && goesOn(); ++i)
    {
        for (const std::filesystem::path &file : items[i].Files())
        {
            auto entry = journal.Find(account, file);
            if (entry && (!entries[i] || entries[i]->outcome == JournalOutcome::Unknown))
            {
                entries[i] = std::move(entry);
            }
        }
    }
    return entries;
}

size_t CountUnknown(const std::vector<std::optional<JournalEntry>> &entries)
{
    return static_cast<size_t>(std::ranges::count_if(
        entries, [](const auto &entry) { return entry && entry->outcome == JournalOutcome::Unknown; }));
}

void LeaveOut(ItemCollection &collection, const std::vector<std::optional<JournalEntry>> &entries,
              bool sendsUnknown)
{
    std::vector<PictureItem> kept;
    for (size_t i = 0; i < entries.size(); ++i)
    {
        PictureItem &item = collection.items[i];
        const bool isUnknown = entries[i] && entries[i]->outcome == JournalOutcome::Unknown;
        if (!entries[i] || (isUnknown && sendsUnknown))
        {
            kept.push_back(std::move(item));
            continue;
        }
        (isUnknown ? collection.undecided : collection.leftOut)
            .push_back({item.TypedFile(), WordsFor(*entries[i], item), entries[i]->photo});
    }
    collection.items = std::move(kept);
}
