#include "loopback/TokenService.h"

#include "loopback/Digest.h"
#include "loopback/RandomText.h"
#include "loopback/XmlReply.h"

#include <algorithm>

namespace loopback
{

namespace
{

constexpr std::size_t BodyLimit = 64 * 1024;

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
    return text == "oob";
}

} // namespace

TokenService::TokenService(AccountBook &accounts, RequestTokenBook &requests, OAuthVerifier::Clock clock)
    : m_accounts(accounts),
      m_requests(requests),
      m_verifier([&accounts](const std::string &key) { return accounts.FindConsumerSecret(key); },
                 [&requests](const std::string &token) {
                     const auto found = requests.Find(token);
                     const bool isOpen = found && (found->state == RequestTokenState::Pending ||
                                                   found->state == RequestTokenState::Granted);
                     return isOpen ? std::optional(found->secret) : std::nullopt;
                 },
                 std::move(clock))
{
}

OAuthOutcome TokenService::Check(HttpExchange &exchange)
{
    const HttpRequest &request = exchange.Request();
    std::string body;
    exchange.ReadBody([&](std::string_view bytes) { return body.append(bytes).size() <= BodyLimit; });
    SignedRequest toCheck{request.method, "https://" + request.host + request.Path(),
                          request.Header("authorization"), ParseForm(request.Query())};
    if (request.Header("content-type").starts_with("application/x-www-form-urlencoded"))
    {
        const FormFields fields = ParseForm(body);
        toCheck.parameters.insert(toCheck.parameters.end(), fields.begin(), fields.end());
    }
    return m_verifier.Check(toCheck);
}

HttpReply TokenService::RequestToken(HttpExchange &exchange)
{
    if (!exchange.Request().secure)
    {
        return FailReply(95, "SSL is required");
    }
    const OAuthOutcome outcome = Check(exchange);
    if (!outcome.accepted)
    {
        return TextReply(401, outcome.problem);
    }
    const std::string callback = FindField(outcome.parameters, "oauth_callback").value_or("");
    if (callback.empty())
    {
        return Absent("oauth_callback");
    }
    if (!IsCallback(callback))
    {
        return Problem("parameter_rejected&oauth_parameters_rejected=oauth_callback");
    }
    const auto token = m_requests.Add(outcome.consumerKey, callback);
    return FormReply({{"oauth_callback_confirmed", "true"},
                      {"oauth_token", token.token},
                      {"oauth_token_secret", token.secret}});
}

HttpReply TokenService::AccessToken(HttpExchange &exchange)
{
    if (!exchange.Request().secure)
    {
        return FailReply(95, "SSL is required");
    }
    const OAuthOutcome outcome = Check(exchange);
    if (!outcome.accepted)
    {
        return TextReply(401, outcome.problem);
    }
    if (outcome.token.empty())
    {
        return Absent("oauth_token");
    }
    const auto request = m_requests.Find(outcome.token);
    if (!request || request->consumer != outcome.consumerKey)
    {
        return Problem("token_rejected");
    }
    const auto verifier = FindField(outcome.parameters, "oauth_verifier");
    if (!verifier)
    {
        return Absent("oauth_verifier");
    }
    // Before the user has granted the token its verifier is empty, and none is right.
    if (request->verifier.empty() || !EqualSecretly(request->verifier, *verifier))
    {
        return Problem("verifier_invalid");
    }
    const auto permission = m_requests.Use(outcome.token);
    if (!permission)
    {
        return Problem("token_rejected");
    }
    const TokenRecord pair{"72157" + RandomDigits(12) + "-" + RandomHex(8), RandomHex(8), *permission,
                           outcome.consumerKey};
    m_accounts.AddToken(pair);
    const Account account = m_accounts.Get();
    return FormReply({{"fullname", account.fullName},
                      {"oauth_token", pair.token},
                      {"oauth_token_secret", pair.secret},
                      {"user_nsid", account.nsid},
                      {"username", account.userName}});
}

} // namespace loopback
