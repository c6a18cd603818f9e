#include "loopback/PhotoIndex.h"

namespace loopback
{

namespace
{

// The columns in the order of PhotoRecord.
#define PHOTO_COLUMNS                                                                                             \
    "id, title, description, tags, is_public, is_friend, is_family, safety_level, content_type, hidden, "         \
    "ticket, file_name, mime_type, detected_type, stored_name, sha256, size, uploaded, token, user_agent, "       \
    "connection, run"

PhotoRecord RecordOf(const Database::Row &row)
{
    PhotoRecord record;
    std::size_t column = 0;
    const auto number = [&] { return NumberAt(row, column++); };
    const auto text = [&] { return TextAt(row, column++); };
    record.id = number();
    record.title = text();
    record.description = text();
    record.tags = text();
    record.isPublic = number() != 0;
    record.isFriend = number() != 0;
    record.isFamily = number() != 0;
    record.safetyLevel = static_cast<int>(number());
    record.contentType = static_cast<int>(number());
    record.hidden = static_cast<int>(number());
    record.ticket = text();
    record.fileName = text();
    record.mimeType = text();
    record.detectedType = text();
    record.storedName = text();
    record.sha256 = text();
    record.size = number();
    record.uploaded = number();
    record.token = text();
    record.userAgent = text();
    record.connection = number();
    record.run = text();
    return record;
}

} // namespace

PhotoIndex::PhotoIndex(Database &database) : m_database(database)
{
    database.Run("CREATE TABLE IF NOT EXISTS photos (id INTEGER PRIMARY KEY, title TEXT NOT NULL, "
                 "description TEXT NOT NULL, tags TEXT NOT NULL, is_public INTEGER NOT NULL, "
                 "is_friend INTEGER NOT NULL, is_family INTEGER NOT NULL, safety_level INTEGER NOT NULL, "
                 "content_type INTEGER NOT NULL, hidden INTEGER NOT NULL, ticket TEXT NOT NULL, "
                 "file_name TEXT NOT NULL, mime_type TEXT NOT NULL, detected_type TEXT NOT NULL, "
                 "stored_name TEXT NOT NULL, sha256 TEXT NOT NULL, size INTEGER NOT NULL, "
                 "uploaded INTEGER NOT NULL, token TEXT NOT NULL, user_agent TEXT NOT NULL, "
                 "connection INTEGER NOT NULL)");
    EnsureTextColumn(database, "photos", "run");
    database.Run("CREATE INDEX IF NOT EXISTS photos_by_content ON photos (sha256)");
    database.Run("CREATE TABLE IF NOT EXISTS ids (id INTEGER PRIMARY KEY AUTOINCREMENT)");
    database.Run("INSERT OR IGNORE INTO ids VALUES (53912345000)");
}

std::int64_t PhotoIndex::ReserveId()
{
    const auto rows = m_database.Run("INSERT INTO ids DEFAULT VALUES RETURNING id");
    m_database.Run("DELETE FROM ids WHERE id < ?", {NumberAt(rows.at(0), 0)});
    return NumberAt(rows.at(0), 0);
}

void PhotoIndex::Add(const PhotoRecord &r)
{
    const auto flag = [](int value) { return static_cast<std::int64_t>(value); };
    m_database.Run("INSERT INTO photos (" PHOTO_COLUMNS ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                   "?, ?, ?, ?, ?, ?, ?)",
                   {r.id,
                    r.title,
                    r.description,
                    r.tags,
                    flag(r.isPublic),
                    flag(r.isFriend),
                    flag(r.isFamily),
                    flag(r.safetyLevel),
                    flag(r.contentType),
                    flag(r.hidden),
                    r.ticket,
                    r.fileName,
                    r.mimeType,
                    r.detectedType,
                    r.storedName,
                    r.sha256,
                    r.size,
                    r.uploaded,
                    r.token,
                    r.userAgent,
                    r.connection,
                    r.run});
}

std::vector<PhotoRecord> PhotoIndex::All() const
{
    std::vector<PhotoRecord> records;
    for (const auto &row : m_database.Run("SELECT " PHOTO_COLUMNS " FROM photos ORDER BY id DESC"))
    {
        records.push_back(RecordOf(row));
    }
    return records;
}

std::optional<PhotoRecord> PhotoIndex::Find(std::int64_t id) const
{
    const auto rows = m_database.Run("SELECT " PHOTO_COLUMNS " FROM photos WHERE id = ?", {id});
    return rows.empty() ? std::nullopt : std::optional(RecordOf(rows[0]));
}

std::optional<std::int64_t> PhotoIndex::FindByTicket(const std::string &ticket) const
{
    const auto rows = m_database.Run("SELECT id FROM photos WHERE ticket = ? AND ticket <> ''", {ticket});
    return rows.empty() ? std::nullopt : std::optional(NumberAt(rows[0], 0));
}

bool PhotoIndex::HasContent(const std::string &sha256) const
{
    return !m_database.Run("SELECT 1 FROM photos WHERE sha256 = ? LIMIT 1", {sha256}).empty();
}

void PhotoIndex::Clear()
{
    m_database.Run("DELETE FROM photos");
}

} // namespace loopback
