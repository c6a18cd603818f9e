#include "host/Commands.h"

#include "host/FileNames.h"
#include "host/InstalledModules_posix.h"
#include "host/Journal.h"
#include "host/Terminal_posix.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace
{
const char *WordFor(JournalOutcome outcome)
{
    switch (outcome)
    {
    case JournalOutcome::Published:
        return "published";
    case JournalOutcome::HandedIn:
        return "handed-in";
    default:
        return "unknown";
    }
}

std::string Line(const JournalEntry &entry)
{
    std::string line = entry.LocalTime() + "  " + WordFor(entry.outcome) + "  " + ShownPath(entry.file.path);
    if (!entry.photo.empty())
    {
        line += "  " + entry.Page();
    }
    else if (!entry.ticket.empty())
    {
        line += "  ticket " + entry.ticket;
    }
    return line + "\n";
}

nlohmann::ordered_json Object(const JournalEntry &entry)
{
    return {{"when", entry.when},
            {"outcome", WordFor(entry.outcome)},
            {"file", NameBytes(entry.file.path)},
            {"size", entry.file.size},
            {"sha256", entry.file.sha256},
            {"photo", entry.photo},
            {"page", entry.Page()},
            {"ticket", entry.ticket},
            {"account", entry.photosUrl}};
}

std::vector<JournalEntry> EntriesFor(const CommandLine &line, Journal &journal, ExitCode &code)
{
    if (line.paths.empty())
    {
        return journal.Entries();
    }
    std::vector<JournalEntry> all;
    for (const auto &path : line.paths)
    {
        const std::vector<JournalEntry> of = journal.Entries(std::filesystem::absolute(path));
        if (of.empty())
        {
            Complain(ShownPath(path) + " was never published from this profile.");
            code = ExitCode::SomeFailed;
        }
        all.insert(all.end(), of.begin(), of.end());
    }
    return all;
}
} // namespace

ExitCode RunHistoryCommand(const CommandLine &line, const Profile &profile)
{
    Journal journal(profile);
    std::ranges::for_each(journal.TakeNotices(), Complain);
    InitDataStore store(profile);
    store.Load();
    const AccountData account = ParseInitData(store.Content()).value_or(AccountData());
    journal.Recognize(JournalAccount::Of(account));
    ExitCode code = ExitCode::Success;
    if (line.refresh)
    {
        UseInstalledModules(ModuleFolders());
        for (const std::string &problem : RefreshTickets(journal, account))
        {
            Complain(problem);
            code = ExitCode::SomeFailed;
        }
    }
    std::vector<JournalEntry> entries = EntriesFor(line, journal, code);
    if (line.count != 0 && entries.size() > line.count)
    {
        entries.resize(line.count);
    }
    if (line.json)
    {
        auto list = nlohmann::ordered_json::array();
        std::ranges::transform(entries, std::back_inserter(list), Object);
        // Names that are no UTF-8 get the replacement character.
        WriteOut(list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
        return code;
    }
    std::string text;
    for (const JournalEntry &entry : entries)
    {
        text += Line(entry);
    }
    WriteOut(text.empty() && line.paths.empty() ? "Nothing was published from this profile yet.\n" : text);
    return code;
}
