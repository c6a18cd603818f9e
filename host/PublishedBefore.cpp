#include "host/PublishedBefore.h"

#include "host/FileDigest.h"
#include "host/FileNames.h"

#include <algorithm>
#include <map>

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

void LeaveOutCopies(ItemCollection &collection)
{
    // Only files of one size can have the same bytes; the others needn't be read.
    const auto sizeOf = [](const std::filesystem::path &file) {
        std::error_code error;
        return std::filesystem::file_size(file, error);
    };
    std::map<std::uintmax_t, size_t> filesOfSize;
    for (const PictureItem &item : collection.items)
    {
        for (size_t i = 0; i < item.extensions.size(); ++i)
        {
            ++filesOfSize[sizeOf(item.File(i))];
        }
    }
    std::map<std::string, std::filesystem::path> kept; // by digest; as the user wrote it
    std::erase_if(collection.items, [&](const PictureItem &item) {
        std::vector<std::string> digests;
        for (size_t i = 0; i < item.extensions.size(); ++i)
        {
            const auto file = item.File(i);
            const std::string digest = filesOfSize[sizeOf(file)] > 1 ? DigestOfFile(file) : std::string();
            if (const auto same = kept.find(digest); same != kept.end())
            {
                collection.copies.push_back({item.TypedFile(), "has the same bytes as " + ShownPath(same->second) +
                                                                   " and isn't sent twice"});
                return true;
            }
            if (!digest.empty())
            {
                digests.push_back(digest);
            }
        }
        for (std::string &digest : digests)
        {
            kept.try_emplace(std::move(digest), item.TypedFile());
        }
        return false;
    });
}
