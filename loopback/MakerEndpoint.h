// The authorization endpoint of the application's maker, separate from the photo service: the browser
// delivers a verifier here, and the application fetches it once. Thread-safe.
#pragma once

#include "loopback/Documents.h"
#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"
#include "loopback/RequestTokenBook.h"

#include <mutex>
#include <string>

namespace loopback
{

class MakerEndpoint
{
public:
    MakerEndpoint(Documents &documents, Clock clock) : m_documents(documents), m_clock(std::move(clock)) {}

    // GET /flickr/authorization/?oauth_token=T&oauth_verifier=V stores V, once for each T, and redirects to a
    // page for the user. With the token alone, over TLS, it returns the document with V, once.
    HttpReply Handle(const HttpRequest &request);

    // "none", "waiting", "taken" or "expired"
    std::string StateOf(const std::string &token) const;

private:
    HttpReply Keep(const std::string &token, const std::string &verifier);
    HttpReply HandOver(const HttpRequest &request, const std::string &token);

    Documents &m_documents;
    Clock m_clock;
    std::mutex m_mutex;
};

} // namespace loopback
