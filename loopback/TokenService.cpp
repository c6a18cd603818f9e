#include "loopback/TokenService.h"

#include "loopback/Secrets.h"
#include "loopback/XmlReply.h"

#include <algorithm>

namespace loopback
{

namespace
{

HttpReply TextReply(int status, std::string text)
{
    HttpReply reply{status, "text/plain; charset=utf-8", std::move(text)};
    reply.headers = {{"Cache-Control", "no-store"}};
    return reply;
}

HttpReply Problem(const std::string &problem)
{
    return TextReply(401, "oauth_problem=" + problem);
}

HttpReply Absent(const char *name)
{
    return Problem(std::string("parameter_absent&oauth_parameters_absent=") + name);
}

HttpReply FormReply(const FormFields &fields)
{
    std::string text;
    for (const auto &[name, value] : fields)
    {
        text += (text.empty() ? "" : "&") + name + "=" + PercentEncode(value);
    }
    return TextReply(200, text);
}

// Whether a browser can be redirected to the text. The Location header holds it unchanged.
bool IsCallback(const std::string &text)
{
    const bool isVisible = std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7F; });
    for (const std::string_view scheme : {"http://", "https://"})
    {
        if (text.starts_with(scheme) && text.size() > scheme.size() && text[scheme.size()] != '/')
        {
            return isVisible && text.find_first_of("'\";,<>\\#") == std::string::npos;
        }
    }
    return false;
}

} // namespace

TokenService::TokenService(AccountBook &accounts, RequestTokenBook &requests, OAuthVerifier::Clock clock)
    : m_accounts(accounts),
      m_requests(requests),
      m_verifier(
          Demonstration,
          [&requests](const std::string &token) {
              const auto found = requests.Find(token);
              const bool isOpen = found && (found->state == Pending || found->state == Granted);
              return isOpen ? std::optional(found->secret) : std::nullopt;
          },
          std::move(clock))
{
}

HttpReply TokenService::Answer(const HttpRequest &request, const FormFields &fields, Step step)
{
    if (!request.secure)
    {
        return FailReply(95, "SSL is required");
    }
    const OAuthOutcome outcome = m_verifier.Check(request, fields);
    return outcome.accepted ? (this->*step)(outcome) : TextReply(401, outcome.problem);
}

HttpReply TokenService::GiveRequestToken(const OAuthOutcome &outcome)
{
    const std::string callback = FindField(outcome.parameters, "oauth_callback").value_or("");
    if (callback.empty())
    {
        return Absent("oauth_callback");
    }
    if (!IsCallback(callback))
    {
        return Problem("parameter_rejected&oauth_parameters_rejected=oauth_callback");
    }
    const auto token = m_requests.Add(callback);
    return FormReply({{"oauth_callback_confirmed", "true"},
                      {"oauth_token", token.token},
                      {"oauth_token_secret", token.secret}});
}

HttpReply TokenService::GiveAccessToken(const OAuthOutcome &outcome)
{
    if (outcome.token.empty())
    {
        return Absent("oauth_token");
    }
    const auto asked = m_requests.Find(outcome.token);
    if (!asked)
    {
        return Problem("token_rejected");
    }
    const auto verifier = FindField(outcome.parameters, "oauth_verifier");
    if (!verifier)
    {
        return Absent("oauth_verifier");
    }
    // Before the user has granted the token its verifier is empty, and none is right.
    if (asked->verifier.empty() || !EqualSecretly(asked->verifier, *verifier))
    {
        return Problem("verifier_invalid");
    }
    const auto permission = m_requests.Use(outcome.token);
    if (!permission)
    {
        return Problem("token_rejected");
    }
    const TokenRecord pair{NewToken(), RandomHex(8), *permission};
    m_accounts.AddToken(pair);
    const Account account = m_accounts.Get();
    return FormReply({{"fullname", account.fullName},
                      {"oauth_token", pair.token},
                      {"oauth_token_secret", pair.secret},
                      {"user_nsid", AccountId},
                      {"username", account.userName}});
}

} // namespace loopback
