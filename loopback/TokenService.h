// The two signed steps of an authorization: /services/oauth/request_token and access_token. The answers are
// URL-encoded fields; a refusal is HTTP 401 with "oauth_problem=...". Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/OAuthVerifier.h"
#include "loopback/RequestTokenBook.h"

namespace loopback
{

class TokenService
{
public:
    TokenService(AccountBook &accounts, RequestTokenBook &requests, OAuthVerifier::Clock clock);

    HttpReply RequestToken(const HttpRequest &request, const FormFields &fields)
    {
        return Answer(request, fields, &TokenService::GiveRequestToken);
    }

    // Exchanges a request token, with its verifier, for an access token, once.
    HttpReply AccessToken(const HttpRequest &request, const FormFields &fields)
    {
        return Answer(request, fields, &TokenService::GiveAccessToken);
    }

private:
    using Step = HttpReply (TokenService::*)(const OAuthOutcome &);

    // The step's answer to a request that is rightly signed.
    HttpReply Answer(const HttpRequest &request, const FormFields &fields, Step step);
    HttpReply GiveRequestToken(const OAuthOutcome &outcome);
    HttpReply GiveAccessToken(const OAuthOutcome &outcome);

    AccountBook &m_accounts;
    RequestTokenBook &m_requests;
    OAuthVerifier m_verifier;
};

} // namespace loopback
