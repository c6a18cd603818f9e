// Decides whether a request may proceed: checks its signature and the permission of its token.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/OAuthVerifier.h"

#include <optional>

namespace loopback
{

enum class Permission
{
    Read,
    Write
};

struct Caller
{
    // Set if the request is refused: the answer to it.
    std::optional<HttpReply> refusal;
    TokenRecord token;
};

class Admission
{
public:
    Admission(AccountBook &accounts, OAuthVerifier::Clock clock);

    // `fields` are the decoded fields of the body, without files. Admit reads those of the query itself.
    Caller Admit(const HttpRequest &request, const FormFields &fields, Permission wanted);

private:
    AccountBook &m_accounts;
    OAuthVerifier m_verifier;
};

} // namespace loopback
