// The one account of the service, its tokens, and the applications that it knows; kept in the index.
// Thread-safe.
#pragma once

#include "database/Database.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

struct Account
{
    std::string nsid;
    std::string userName;
    std::string fullName;
    std::string photosUrl;
    bool isPro = false;
    // Bytes. A maximum of 0 means no limit on the bandwidth; a pro account never has one.
    std::int64_t maxFileSize = 0;
    std::int64_t bandwidthMax = 0;
    std::int64_t bandwidthUsed = 0;
    // Whether the service refuses a picture whose bytes it already has.
    bool refuseDuplicates = false;
    // How long a request token is valid, in seconds.
    std::int64_t requestTokenLife = 0;
    // The label of current uploads on the page that compares uploads; may be empty.
    std::string run;
};

struct TokenRecord
{
    std::string token;
    std::string secret;
    // "read", "write" or "delete"
    std::string permission;
    // The key of the only application that may use the token; empty for any.
    std::string consumer;
};

class AccountBook
{
public:
    // Fills a new index with the demonstration account, token and application.
    explicit AccountBook(Database &database);

    Account Get() const;

    // Sets a property by its name. Returns an error message if there is no such property or the value is bad.
    std::optional<std::string> Set(const std::string &name, const std::string &value);
    // Names and values of all properties, in order.
    std::map<std::string, std::string> Properties() const;

    // Counts an upload against the bandwidth. If it doesn't fit, counts nothing and returns false.
    bool UseBandwidth(std::int64_t bytes);

    std::optional<TokenRecord> FindToken(const std::string &token) const;
    std::vector<TokenRecord> Tokens() const;
    void AddToken(const TokenRecord &record);
    void RemoveToken(const std::string &token);

    std::optional<std::string> FindConsumerSecret(const std::string &key) const;
    // The application's name for the consent page; empty for an unknown or nameless application.
    std::string ConsumerName(const std::string &key) const;
    void AddConsumer(const std::string &key, const std::string &secret, const std::string &name);

private:
    void Store(const std::string &name, const std::string &value);

    Database &m_database;
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_properties;
};

} // namespace loopback
