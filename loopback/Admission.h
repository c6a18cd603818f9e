// Who is calling: the signature of a request, and what the token behind it may do.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/HttpMessages.h"
#include "loopback/OAuthVerifier.h"

#include <optional>

namespace loopback
{

enum class Permission
{
    // A signature of the application is enough.
    None,
    Read,
    Write
};

struct Caller
{
    // The answer for a caller who is not let in.
    std::optional<HttpReply> refusal;
    TokenRecord token;
};

class Admission
{
public:
    Admission(AccountBook &accounts, OAuthVerifier::Clock clock);

    // `fields` are the decoded fields of the body, without files; the query is read here.
    Caller Admit(const HttpRequest &request, const FormFields &fields, Permission wanted);

private:
    AccountBook &m_accounts;
    OAuthVerifier m_verifier;
};

} // namespace loopback
