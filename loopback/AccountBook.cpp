#include "loopback/AccountBook.h"

#include "loopback/FormFields.h"

#include <algorithm>
#include <array>

namespace loopback
{

namespace
{

enum class Kind
{
    Text,
    Size,
    Flag,
    Level
};

struct PropertyRule
{
    const char *name;
    Kind kind;
    const char *initial;
};

constexpr std::array PropertyRules = {
    PropertyRule{"nsid", Kind::Text, "12037949754@N01"},
    PropertyRule{"user_name", Kind::Text, "halvora-demo"},
    PropertyRule{"full_name", Kind::Text, "Ada Lovelace"},
    PropertyRule{"photos_url", Kind::Text, "https://www.flickr.com/photos/halvora-demo/"},
    PropertyRule{"level", Kind::Level, "basic"},
    PropertyRule{"max_file_size", Kind::Size, "209715200"},
    PropertyRule{"bandwidth_max", Kind::Size, "107374182400"},
    PropertyRule{"bandwidth_used", Kind::Size, "0"},
    PropertyRule{"refuse_duplicates", Kind::Flag, "0"},
    PropertyRule{"request_token_seconds", Kind::Size, "600"},
    PropertyRule{"run", Kind::Text, ""},
};

constexpr char DemoToken[] = "72157600000000000-demo000000000000";
constexpr char DemoSecret[] = "demosecret000000";
constexpr char DemoConsumerKey[] = "68616c766f72612d64656d6f2d6b6579";
constexpr char DemoConsumerSecret[] = "64656d6f2d736563";
constexpr char DemoConsumerName[] = "Halvora";

std::optional<std::string> Complaint(const PropertyRule &rule, const std::string &value)
{
    switch (rule.kind)
    {
    case Kind::Text:
        return std::nullopt;
    case Kind::Size:
        return ParseWholeNumber(value).value_or(-1) >= 0
                   ? std::nullopt
                   : std::optional<std::string>("a whole number of 0 or more is wanted");
    case Kind::Flag:
        return value == "0" || value == "1" ? std::nullopt : std::optional<std::string>("0 or 1 is wanted");
    case Kind::Level:
        return value == "pro" || value == "basic" ? std::nullopt
                                                  : std::optional<std::string>("pro or basic is wanted");
    }
    return std::nullopt;
}

} // namespace

AccountBook::AccountBook(Database &database) : m_database(database)
{
    database.Run("CREATE TABLE IF NOT EXISTS account (name TEXT PRIMARY KEY, value TEXT NOT NULL)");
    database.Run("CREATE TABLE IF NOT EXISTS consumers (key TEXT PRIMARY KEY, secret TEXT NOT NULL)");
    database.Run("CREATE TABLE IF NOT EXISTS tokens (token TEXT PRIMARY KEY, secret TEXT NOT NULL, "
                 "permission TEXT NOT NULL)");
    EnsureTextColumn(database, "consumers", "name");
    EnsureTextColumn(database, "tokens", "consumer");
    for (const auto &row : database.Run("SELECT name, value FROM account"))
    {
        m_properties[TextAt(row, 0)] = TextAt(row, 1);
    }
    if (m_properties.empty())
    {
        AddConsumer(DemoConsumerKey, DemoConsumerSecret, DemoConsumerName);
        AddToken({DemoToken, DemoSecret, "write"});
    }
    database.Run("UPDATE consumers SET name = ? WHERE key = ? AND name = ''", {DemoConsumerName, DemoConsumerKey});
    for (const auto &rule : PropertyRules)
    {
        if (!m_properties.contains(rule.name))
        {
            Store(rule.name, rule.initial);
        }
    }
}

void AccountBook::Store(const std::string &name, const std::string &value)
{
    m_database.Run("INSERT OR REPLACE INTO account VALUES (?, ?)", {name, value});
    m_properties[name] = value;
}

Account AccountBook::Get() const
{
    std::lock_guard lock(m_mutex);
    const auto number = [&](const char *name) { return ParseWholeNumber(m_properties.at(name)).value_or(0); };
    return {m_properties.at("nsid"),
            m_properties.at("user_name"),
            m_properties.at("full_name"),
            m_properties.at("photos_url"),
            m_properties.at("level") == "pro",
            number("max_file_size"),
            number("bandwidth_max"),
            number("bandwidth_used"),
            number("refuse_duplicates") == 1,
            number("request_token_seconds"),
            m_properties.at("run")};
}

std::optional<std::string> AccountBook::Set(const std::string &name, const std::string &value)
{
    const auto rule = std::find_if(PropertyRules.begin(), PropertyRules.end(),
                                   [&](const PropertyRule &candidate) { return name == candidate.name; });
    if (rule == PropertyRules.end())
    {
        return "there is no account property \"" + name + "\"";
    }
    if (const auto complaint = Complaint(*rule, value))
    {
        return name + ": " + *complaint;
    }
    std::lock_guard lock(m_mutex);
    Store(name, value);
    return std::nullopt;
}

std::map<std::string, std::string> AccountBook::Properties() const
{
    std::lock_guard lock(m_mutex);
    return m_properties;
}

bool AccountBook::UseBandwidth(std::int64_t bytes)
{
    const Account account = Get();
    const bool isLimited = !account.isPro && account.bandwidthMax > 0;
    std::lock_guard lock(m_mutex);
    const auto used = ParseWholeNumber(m_properties.at("bandwidth_used")).value_or(0);
    if (isLimited && bytes > account.bandwidthMax - used)
    {
        return false;
    }
    Store("bandwidth_used", std::to_string(used + bytes));
    return true;
}

std::optional<TokenRecord> AccountBook::FindToken(const std::string &token) const
{
    const auto rows =
        m_database.Run("SELECT token, secret, permission, consumer FROM tokens WHERE token = ?", {token});
    if (rows.empty())
    {
        return std::nullopt;
    }
    return TokenRecord{TextAt(rows[0], 0), TextAt(rows[0], 1), TextAt(rows[0], 2), TextAt(rows[0], 3)};
}

std::vector<TokenRecord> AccountBook::Tokens() const
{
    std::vector<TokenRecord> tokens;
    for (const auto &row : m_database.Run("SELECT token, secret, permission, consumer FROM tokens ORDER BY rowid"))
    {
        tokens.push_back({TextAt(row, 0), TextAt(row, 1), TextAt(row, 2), TextAt(row, 3)});
    }
    return tokens;
}

void AccountBook::AddToken(const TokenRecord &record)
{
    m_database.Run("INSERT OR REPLACE INTO tokens (token, secret, permission, consumer) VALUES (?, ?, ?, ?)",
                   {record.token, record.secret, record.permission, record.consumer});
}

void AccountBook::RemoveToken(const std::string &token)
{
    m_database.Run("DELETE FROM tokens WHERE token = ?", {token});
}

std::optional<std::string> AccountBook::FindConsumerSecret(const std::string &key) const
{
    const auto rows = m_database.Run("SELECT secret FROM consumers WHERE key = ?", {key});
    return rows.empty() ? std::nullopt : std::optional(TextAt(rows[0], 0));
}

std::string AccountBook::ConsumerName(const std::string &key) const
{
    const auto rows = m_database.Run("SELECT name FROM consumers WHERE key = ?", {key});
    return rows.empty() ? std::string() : TextAt(rows[0], 0);
}

void AccountBook::AddConsumer(const std::string &key, const std::string &secret, const std::string &name)
{
    m_database.Run("INSERT OR REPLACE INTO consumers (key, secret, name) VALUES (?, ?, ?)", {key, secret, name});
}

} // namespace loopback
