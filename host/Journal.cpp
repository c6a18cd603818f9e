#include "host/Journal.h"

#include "host/FileNames.h"
#include "host/TextEncodings.h"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace fs = std::filesystem;

namespace
{
using namespace std::chrono;

const std::string Selection =
    "SELECT id, path, size, time, sha256, account, began, outcome, photo, ticket FROM uploads ";
const std::string OfAccount = "(token = ? OR (account <> '' AND account = ?)) ";
// An outcome that is known comes first, and of several the last.
const std::string BestFirst = "ORDER BY outcome = 0, id DESC ";

JournalEntry EntryOf(const Database::Row &row)
{
    JournalEntry entry;
    entry.id = NumberAt(row, 0);
    entry.file = {PathOfNameBytes(TextAt(row, 1)), static_cast<std::uintmax_t>(NumberAt(row, 2)), NumberAt(row, 3),
                  TextAt(row, 4)};
    entry.photosUrl = TextAt(row, 5);
    entry.when = NumberAt(row, 6);
    entry.outcome = static_cast<JournalOutcome>(NumberAt(row, 7));
    entry.photo = TextAt(row, 8);
    entry.ticket = TextAt(row, 9);
    return entry;
}

} // namespace

JournalAccount JournalAccount::Of(const AccountData &account)
{
    return {Utf8FromText(account.photosUrl.value_or(WideText())),
            DigestOfText(Utf8FromText(account.token.value_or(WideText())))};
}

std::string JournalEntry::LocalTime() const
{
    const auto time = static_cast<std::time_t>(when);
    const std::tm *const parts = std::localtime(&time);
    std::string text(16, '-');
    if (parts != nullptr)
    {
        text.resize(std::strftime(text.data(), text.size() + 1, "%Y-%m-%d %H:%M", parts));
    }
    return text;
}

std::string JournalEntry::Page() const
{
    if (photo.empty())
    {
        return photo;
    }
    return photosUrl.empty() ? "https://www.flickr.com/photo.gne?id=" + photo
                             : photosUrl + (photosUrl.ends_with('/') ? "" : "/") + photo + "/";
}

void Journal::Recognize(const JournalAccount &account)
{
    if (!account.photosUrl.empty())
    {
        m_file.Run("UPDATE uploads SET account = ? WHERE token = ? AND account = ''",
                   {account.photosUrl, account.token});
    }
}

std::optional<JournalEntry> Journal::Find(const JournalAccount &account, const fs::path &file)
{
    const std::optional<FileState> state = LookAtFile(file);
    if (!state)
    {
        return std::nullopt;
    }
    const auto size = static_cast<std::int64_t>(state->size);
    auto rows =
        m_file.Run(Selection + "WHERE path = ? AND size = ? AND time = ? AND " + OfAccount + BestFirst + "LIMIT 1",
                   {NameBytes(file), size, state->time, account.token, account.photosUrl});
    // A file is read only where one of its size was sent.
    if (rows.empty() && !m_file.Run("SELECT 1 FROM uploads WHERE size = ? LIMIT 1", {size}).empty())
    {
        rows = m_file.Run(Selection + "WHERE sha256 = ? AND sha256 <> '' AND " + OfAccount + BestFirst + "LIMIT 1",
                          {DigestOfFile(file), account.token, account.photosUrl});
    }
    return rows.empty() ? std::nullopt : std::optional(EntryOf(rows[0]));
}

std::int64_t Journal::Begin(const JournalAccount &account, const FileState &file)
{
    const auto now = duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    return NumberAt(
        m_file
            .Run("INSERT INTO uploads(account, token, path, size, time, sha256, began, outcome, photo, ticket) "
                 "VALUES(?, ?, ?, ?, ?, ?, ?, 0, '', '') RETURNING id",
                 {account.photosUrl, account.token, NameBytes(file.path), static_cast<std::int64_t>(file.size),
                  file.time, file.sha256, std::int64_t{now}})
            .at(0),
        0);
}

void Journal::Settle(std::int64_t id, JournalOutcome outcome, const std::string &photo, const std::string &ticket)
{
    m_file.Run("UPDATE uploads SET outcome = ?, photo = ?, ticket = ? WHERE id = ?",
               {static_cast<std::int64_t>(outcome), photo, ticket, id});
}

void Journal::Forget(std::int64_t id)
{
    m_file.Run("DELETE FROM uploads WHERE id = ?", {id});
}

std::vector<JournalEntry> Journal::Entries(const fs::path &file)
{
    std::vector<Database::Row> rows;
    if (file.empty())
    {
        rows = m_file.Run(Selection + "ORDER BY id DESC");
    }
    else
    {
        rows = m_file.Run(Selection + "WHERE path = ? OR (sha256 = ? AND sha256 <> '') ORDER BY id DESC",
                          {NameBytes(file), DigestOfFile(file)});
    }
    std::vector<JournalEntry> entries;
    std::ranges::transform(rows, std::back_inserter(entries), EntryOf);
    return entries;
}
