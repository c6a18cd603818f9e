// The request tokens of unfinished authorizations, kept in the index: an application asks for one, the user
// grants or denies it, and the application exchanges it once. Thread-safe.
#pragma once

#include "database/Database.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

enum class RequestTokenState
{
    // The user hasn't answered yet.
    Pending,
    Granted,
    Denied,
    // It was exchanged for an access token.
    Used,
    // Its lifetime is over, with or without an answer.
    Expired
};

const char *StateName(RequestTokenState state);

struct RequestToken
{
    std::string token;
    // Empty once it is used or denied.
    std::string secret;
    // The key of the application that asked.
    std::string consumer;
    // "oob" or an http or https address.
    std::string callback;
    // What the user granted; empty until then.
    std::string permission;
    // Empty unless the state is Granted.
    std::string verifier;
    RequestTokenState state = RequestTokenState::Pending;
    // Seconds; negative if the lifetime is over.
    std::int64_t secondsLeft = 0;
};

class RequestTokenBook
{
public:
    // The current time, or how long a token is valid; both in seconds.
    using Seconds = std::function<std::int64_t()>;

    RequestTokenBook(Database &database, Seconds now, Seconds lifetime);

    RequestToken Add(const std::string &consumer, const std::string &callback);
    std::optional<RequestToken> Find(const std::string &token) const;
    // The oldest first.
    std::vector<RequestToken> All() const;

    // Returns the token with a new verifier. Unless it is pending, changes nothing and returns nullopt.
    std::optional<RequestToken> Grant(const std::string &token, const std::string &permission);
    // Unless it is pending, changes nothing and returns false.
    bool Deny(const std::string &token);
    // Returns the granted permission, once. Unless it is granted and not expired, changes nothing and returns
    // nullopt.
    std::optional<std::string> Use(const std::string &token);

    // Makes every token that much older.
    void Advance(std::int64_t seconds);

private:
    RequestToken TokenOf(const Database::Row &row) const;
    // A token that was requested at this time or earlier has expired.
    std::int64_t Deadline() const;

    Database &m_database;
    Seconds m_now;
    Seconds m_lifetime;
};

} // namespace loopback
