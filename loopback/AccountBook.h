// The one account of the service and its tokens, kept in the index. Thread-safe.
#pragma once

#include "loopback/Documents.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

inline constexpr char AccountId[] = "12037949754@N01";

struct Account
{
    std::string userName;
    std::string fullName;
    bool isPro = false;
    // Bytes. A maximum of 0 means no limit on the bandwidth; a pro account never has one.
    std::int64_t maxFileSize = 0;
    std::int64_t bandwidthMax = 0;
    std::int64_t bandwidthUsed = 0;
    // The label of current uploads on the page that compares uploads; may be empty.
    std::string run;

    bool IsUnlimited() const { return isPro || bandwidthMax == 0; }
};

struct TokenRecord
{
    std::string token;
    std::string secret;
    // "read", "write" or "delete"
    std::string permission;
};

class AccountBook
{
public:
    // Fills a new index with the demonstration account and token.
    explicit AccountBook(Documents &documents);

    Account Get() const;

    // Sets a property by its name. Returns an error message if there is no such property or the value is bad.
    std::optional<std::string> Set(const std::string &name, const std::string &value);

    // Counts an upload against the bandwidth. If it doesn't fit, counts nothing and returns false.
    bool UseBandwidth(std::int64_t bytes);

    std::optional<TokenRecord> FindToken(const std::string &token) const;
    std::vector<TokenRecord> Tokens() const;
    void AddToken(const TokenRecord &record);

private:
    std::string Property(const std::string &name) const;

    Documents &m_documents;
    mutable std::recursive_mutex m_mutex;
};

} // namespace loopback
