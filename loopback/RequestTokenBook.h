// The request tokens of authorizations that are under way, kept in the index: asked for by an
// application, answered by a user, traded in once. Thread-safe.
#pragma once

#include "loopback/Database.h"

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
    // An access token was given for it.
    Used,
    // Its time ran out, with or without an answer.
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
    // Empty unless it is granted.
    std::string verifier;
    RequestTokenState state = RequestTokenState::Pending;
    // Seconds; negative when the time ran out.
    std::int64_t secondsLeft = 0;
};

class RequestTokenBook
{
public:
    // Both in seconds: the time now, and how long a token is good for.
    using Seconds = std::function<std::int64_t()>;

    RequestTokenBook(Database &database, Seconds now, Seconds lifetime);

    RequestToken Add(const std::string &consumer, const std::string &callback);
    std::optional<RequestToken> Find(const std::string &token) const;
    // The oldest first.
    std::vector<RequestToken> All() const;

    // The token with a new verifier; nothing, and no change, unless it was waiting for an answer.
    std::optional<RequestToken> Grant(const std::string &token, const std::string &permission);
    // False, and no change, unless it was waiting for an answer.
    bool Deny(const std::string &token);
    // The granted permission, once; nothing, and no change, unless it is granted and not expired.
    std::optional<std::string> Use(const std::string &token);

    // Makes every token so much older.
    void Advance(std::int64_t seconds);

private:
    RequestToken TokenOf(const Database::Row &row) const;
    // The latest time of asking that is too long ago.
    std::int64_t Deadline() const;

    Database &m_database;
    Seconds m_now;
    Seconds m_lifetime;
};

} // namespace loopback
