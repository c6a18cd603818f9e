#include "loopback/Admission.h"

#include "loopback/XmlReply.h"

namespace loopback
{

Admission::Admission(AccountBook &accounts, OAuthVerifier::Clock clock)
    : m_accounts(accounts),
      m_verifier(
          Demonstration,
          [&accounts](const std::string &token) {
              const auto record = accounts.FindToken(token);
              return record ? std::optional(record->secret) : std::nullopt;
          },
          std::move(clock))
{
}

Caller Admission::Admit(const HttpRequest &request, const FormFields &fields, Permission wanted)
{
    if (!request.secure)
    {
        return {FailReply(95, "SSL is required")};
    }
    const OAuthOutcome outcome = m_verifier.Check(request, fields);
    if (outcome.isUnsigned)
    {
        return {FailReply(100, "Invalid API Key (Key has invalid format)")};
    }
    if (!outcome.accepted)
    {
        return {HttpReply{401, "text/plain; charset=utf-8", outcome.problem}};
    }
    Caller caller;
    caller.token = m_accounts.FindToken(outcome.token).value_or(TokenRecord{});
    if (caller.token.token.empty())
    {
        return {FailReply(99, "User not logged in / Insufficient permissions")};
    }
    if (wanted == Permission::Write && caller.token.permission == "read")
    {
        return {FailReply(99, "Insufficient permissions. Method requires write privileges; read granted.")};
    }
    return caller;
}

} // namespace loopback
