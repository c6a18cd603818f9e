#include "loopback/AccountBook.h"

#include "loopback/FormFields.h"

#include <nlohmann/json.hpp>

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
    Level
};

struct PropertyRule
{
    const char *name;
    Kind kind;
    const char *initial;
};

constexpr std::array PropertyRules = {
    PropertyRule{"user_name", Kind::Text, "halvora-demo"},
    PropertyRule{"full_name", Kind::Text, "Ada Lovelace"},
    PropertyRule{"level", Kind::Level, "basic"},
    PropertyRule{"max_file_size", Kind::Size, "209715200"},
    PropertyRule{"bandwidth_max", Kind::Size, "107374182400"},
    PropertyRule{"bandwidth_used", Kind::Size, "0"},
    PropertyRule{"run", Kind::Text, ""},
};

constexpr char Properties[] = "account";
constexpr char TokenCollection[] = "tokens";

const PropertyRule *FindRule(const std::string &name)
{
    const auto rule = std::ranges::find(PropertyRules, name, &PropertyRule::name);
    return rule == PropertyRules.end() ? nullptr : &*rule;
}

TokenRecord TokenOf(const Json &document)
{
    return {document.at("token"), document.at("secret"), document.at("permission")};
}

} // namespace

AccountBook::AccountBook(Documents &documents) : m_documents(documents)
{
    if (Tokens().empty())
    {
        AddToken({"72157600000000000-demo000000000000", "demosecret000000", "write"});
    }
}

std::string AccountBook::Property(const std::string &name) const
{
    const auto stored = m_documents.Find(Properties, name);
    return stored ? stored->get<std::string>() : FindRule(name)->initial;
}

Account AccountBook::Get() const
{
    const std::lock_guard lock(m_mutex);
    const auto number = [&](const char *name) { return ParseWholeNumber(Property(name)).value_or(0); };
    return {Property("user_name"),   Property("full_name"),   Property("level") == "pro",
            number("max_file_size"), number("bandwidth_max"), number("bandwidth_used"),
            Property("run")};
}

std::optional<std::string> AccountBook::Set(const std::string &name, const std::string &value)
{
    const PropertyRule *rule = FindRule(name);
    if (!rule)
    {
        return "there is no account property \"" + name + "\"";
    }
    if (rule->kind == Kind::Size && ParseWholeNumber(value).value_or(-1) < 0)
    {
        return name + ": a whole number of 0 or more is wanted";
    }
    if (rule->kind == Kind::Level && value != "pro" && value != "basic")
    {
        return name + ": pro or basic is wanted";
    }
    const std::lock_guard lock(m_mutex);
    m_documents.Put(Properties, name, value);
    return std::nullopt;
}

bool AccountBook::UseBandwidth(std::int64_t bytes)
{
    const std::lock_guard lock(m_mutex);
    const Account account = Get();
    if (!account.IsUnlimited() && bytes > account.bandwidthMax - account.bandwidthUsed)
    {
        return false;
    }
    m_documents.Put(Properties, "bandwidth_used", std::to_string(account.bandwidthUsed + bytes));
    return true;
}

std::optional<TokenRecord> AccountBook::FindToken(const std::string &token) const
{
    const auto document = m_documents.Find(TokenCollection, token);
    return document ? std::optional(TokenOf(*document)) : std::nullopt;
}

std::vector<TokenRecord> AccountBook::Tokens() const
{
    std::vector<TokenRecord> tokens;
    for (const auto &document : m_documents.All(TokenCollection))
    {
        tokens.push_back(TokenOf(document));
    }
    return tokens;
}

void AccountBook::AddToken(const TokenRecord &record)
{
    m_documents.Put(TokenCollection, record.token,
                    {{"token", record.token}, {"secret", record.secret}, {"permission", record.permission}});
}

} // namespace loopback
