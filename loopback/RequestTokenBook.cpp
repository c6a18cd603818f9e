#include "loopback/RequestTokenBook.h"

#include "loopback/RandomText.h"

#include <algorithm>
#include <array>

namespace loopback
{

namespace
{

// The administration interface shows expired and used tokens for a day.
constexpr std::int64_t KeepSeconds = 24 * 60 * 60;

constexpr std::array StateNames = {"pending", "granted", "denied", "used", "expired"};

#define TOKEN_COLUMNS "token, secret, consumer, callback, permission, verifier, state, asked"

} // namespace

const char *StateName(RequestTokenState state)
{
    return StateNames[static_cast<std::size_t>(state)];
}

RequestTokenBook::RequestTokenBook(Database &database, Seconds now, Seconds lifetime)
    : m_database(database), m_now(std::move(now)), m_lifetime(std::move(lifetime))
{
    database.Run("CREATE TABLE IF NOT EXISTS request_tokens (token TEXT PRIMARY KEY, secret TEXT NOT NULL, "
                 "consumer TEXT NOT NULL, callback TEXT NOT NULL, permission TEXT NOT NULL, "
                 "verifier TEXT NOT NULL, state TEXT NOT NULL, asked INTEGER NOT NULL)");
}

std::int64_t RequestTokenBook::Deadline() const
{
    return m_now() - m_lifetime();
}

RequestToken RequestTokenBook::TokenOf(const Database::Row &row) const
{
    RequestToken token{TextAt(row, 0), TextAt(row, 1), TextAt(row, 2),
                       TextAt(row, 3), TextAt(row, 4), TextAt(row, 5)};
    const auto state = std::find(StateNames.begin(), StateNames.end(), TextAt(row, 6));
    token.state = static_cast<RequestTokenState>(state - StateNames.begin());
    token.secondsLeft = NumberAt(row, 7) - Deadline();
    const bool isOpen = token.state == RequestTokenState::Pending || token.state == RequestTokenState::Granted;
    if (isOpen && token.secondsLeft <= 0)
    {
        token.state = RequestTokenState::Expired;
    }
    return token;
}

RequestToken RequestTokenBook::Add(const std::string &consumer, const std::string &callback)
{
    const std::int64_t now = m_now();
    m_database.Run("DELETE FROM request_tokens WHERE asked < ?", {now - KeepSeconds - m_lifetime()});
    const std::string token = "72157" + RandomDigits(12) + "-" + RandomHex(8);
    m_database.Run("INSERT INTO request_tokens (" TOKEN_COLUMNS ") VALUES (?, ?, ?, ?, '', '', 'pending', ?)",
                   {token, RandomHex(8), consumer, callback, now});
    return Find(token).value();
}

std::optional<RequestToken> RequestTokenBook::Find(const std::string &token) const
{
    const auto rows = m_database.Run("SELECT " TOKEN_COLUMNS " FROM request_tokens WHERE token = ?", {token});
    return rows.empty() ? std::nullopt : std::optional(TokenOf(rows[0]));
}

std::vector<RequestToken> RequestTokenBook::All() const
{
    std::vector<RequestToken> tokens;
    for (const auto &row : m_database.Run("SELECT " TOKEN_COLUMNS " FROM request_tokens ORDER BY rowid"))
    {
        tokens.push_back(TokenOf(row));
    }
    return tokens;
}

std::optional<RequestToken> RequestTokenBook::Grant(const std::string &token, const std::string &permission)
{
    const auto granted =
        m_database.Run("UPDATE request_tokens SET state = 'granted', permission = ?, verifier = ? WHERE token = ? "
                       "AND state = 'pending' AND asked > ? RETURNING " TOKEN_COLUMNS,
                       {permission, RandomHex(8), token, Deadline()});
    return granted.empty() ? std::nullopt : std::optional(TokenOf(granted[0]));
}

bool RequestTokenBook::Deny(const std::string &token)
{
    return !m_database
                .Run("UPDATE request_tokens SET state = 'denied', secret = '' WHERE token = ? "
                     "AND state = 'pending' AND asked > ? RETURNING token",
                     {token, Deadline()})
                .empty();
}

std::optional<std::string> RequestTokenBook::Use(const std::string &token)
{
    const auto used = m_database.Run("UPDATE request_tokens SET state = 'used', secret = '', verifier = '' "
                                     "WHERE token = ? AND state = 'granted' AND asked > ? RETURNING permission",
                                     {token, Deadline()});
    return used.empty() ? std::nullopt : std::optional(TextAt(used[0], 0));
}

void RequestTokenBook::Advance(std::int64_t seconds)
{
    m_database.Run("UPDATE request_tokens SET asked = asked - ?", {seconds});
}

} // namespace loopback
