// The request tokens of unfinished authorizations, kept in the index: an application asks for one, the user
// grants or denies it, and the application exchanges it once. Thread-safe.
#pragma once

#include "loopback/Documents.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace loopback
{

// The time, in Unix seconds.
using Clock = std::function<std::int64_t()>;

// How long a request token and its verifier are valid, in seconds.
constexpr std::int64_t RequestTokenLife = 600;

// The names of a request token's states.
inline constexpr char Pending[] = "pending"; // the user hasn't answered yet
inline constexpr char Granted[] = "granted";
inline constexpr char Denied[] = "denied";
inline constexpr char Used[] = "used";       // it was exchanged for an access token
inline constexpr char Expired[] = "expired"; // with or without an answer

struct RequestToken
{
    std::string token;
    // Empty once it is used or denied.
    std::string secret;
    std::string callback;
    // What the user granted; empty until then.
    std::string permission;
    // Empty unless the state is Granted.
    std::string verifier;
    std::string state = Pending;
    // Unix seconds
    std::int64_t expires = 0;
};

class RequestTokenBook
{
public:
    RequestTokenBook(Documents &documents, Clock clock) : m_documents(documents), m_clock(std::move(clock)) {}

    RequestToken Add(const std::string &callback);
    std::optional<RequestToken> Find(const std::string &token) const;
    // The oldest first.
    std::vector<RequestToken> All() const;
    std::int64_t SecondsLeft(const RequestToken &token) const { return token.expires - m_clock(); }

    // Returns the token with a new verifier. Unless it is pending, changes nothing and returns nullopt.
    std::optional<RequestToken> Grant(const std::string &token, const std::string &permission);
    // Unless it is pending, changes nothing and returns false.
    bool Deny(const std::string &token);
    // Returns the granted permission, once. Unless it is granted, changes nothing and returns nullopt.
    std::optional<std::string> Use(const std::string &token);

private:
    RequestToken TokenOf(const Json &document) const;
    void Put(const RequestToken &token);

    Documents &m_documents;
    Clock m_clock;
    std::mutex m_mutex;
};

} // namespace loopback
