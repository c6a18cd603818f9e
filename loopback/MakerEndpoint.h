// The authorization endpoint of the application's maker, separate from the photo service: the browser
// delivers a verifier here, and the application fetches it once. Thread-safe.
#pragma once

#include "database/Database.h"
#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace loopback
{

class MakerEndpoint
{
public:
    using Seconds = std::function<std::int64_t()>;

    // `lifetime` is how many seconds a verifier is kept.
    MakerEndpoint(Database &database, Seconds now, Seconds lifetime);

    // GET /flickr/authorization/?oauth_token=T&oauth_verifier=V stores V, once for each T, and redirects to a
    // page for the user. With the token alone, over TLS, it returns the document with V, once.
    HttpReply Handle(const HttpRequest &request);

    // The tokens, each with "waiting", "taken" or "expired"; never a verifier.
    std::vector<std::pair<std::string, std::string>> States() const;
    // Makes all verifiers that much older.
    void Advance(std::int64_t seconds);

private:
    HttpReply Keep(const std::string &token, const std::string &verifier);
    HttpReply HandOver(const HttpRequest &request, const std::string &token);

    Database &m_database;
    Seconds m_now;
    Seconds m_lifetime;
    std::mutex m_mutex;
};

} // namespace loopback
