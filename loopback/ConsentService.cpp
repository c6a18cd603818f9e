#include "loopback/ConsentService.h"

#include "loopback/Digest.h"
#include "loopback/PageFrame.h"
#include "loopback/RandomText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace loopback
{

namespace
{

constexpr std::size_t BodyLimit = 64 * 1024;
constexpr std::string_view CookieName = "visitor=";
constexpr std::size_t VisitorBytes = 16;

std::string Field(const FormFields &fields, const char *name)
{
    return FindField(fields, name).value_or("");
}

// "read" if the request doesn't name a permission.
std::string Permission(const FormFields &fields)
{
    return FindField(fields, "perms").value_or("read");
}

bool IsPermission(const std::string &permission)
{
    constexpr std::array known = {"read", "write", "delete"};
    return std::find(known.begin(), known.end(), permission) != known.end();
}

// The random name of the browser, from our cookie; empty without one. A form counts only if it was shown to
// the browser that sends it.
std::string VisitorOf(const HttpRequest &request)
{
    const std::string cookies = request.Header("cookie");
    for (std::size_t at = 0; at < cookies.size();)
    {
        const auto end = std::min(cookies.find(';', at), cookies.size());
        const auto begin = std::min(cookies.find_first_not_of(' ', at), end);
        if (cookies.compare(begin, CookieName.size(), CookieName) == 0)
        {
            const std::string visitor = cookies.substr(begin + CookieName.size(), end - begin - CookieName.size());
            const bool isOurs = visitor.size() == 2 * VisitorBytes &&
                                visitor.find_first_not_of("0123456789abcdef") == std::string::npos;
            return isOurs ? visitor : std::string();
        }
        at = end + 1;
    }
    return {};
}

bool IsFromOwnPage(const HttpRequest &request)
{
    const std::string origin = request.Header("origin");
    return origin.empty() || origin == (request.secure ? "https://" : "http://") + request.host;
}

// "http://host:1/path?query" without its path.
std::string OriginOf(const std::string &address)
{
    return address.substr(0, address.find_first_of("/?", address.find("://") + 3));
}

std::string HostOf(const std::string &address)
{
    const std::string origin = OriginOf(address);
    return origin.substr(origin.find("://") + 3);
}

HttpReply Outcome(int status, std::string_view heading, std::string_view text)
{
    return PageReply(status, ConsentOutcomePage(heading, text));
}

// Explains why the request token can't be granted or denied now.
HttpReply NothingToAnswer(const std::optional<RequestToken> &token)
{
    if (!token)
    {
        return Outcome(404, "This question isn’t known here",
                       "The address is incomplete, or the question was asked too long ago. Go back to the program "
                       "that opened this page and start the authorization again.");
    }
    switch (token->state)
    {
    case RequestTokenState::Denied:
        return Outcome(410, "You have already said no",
                       "Nothing was granted. If you have changed your mind, start the authorization again in the "
                       "program that opened this page.");
    case RequestTokenState::Expired:
        return Outcome(410, "The time for this question is over",
                       "Nothing was granted. Go back to the program that opened this page and start the "
                       "authorization again.");
    default:
        return Outcome(410, "You have already allowed this",
                       "There is nothing more to do here. Go back to the program that opened this page.");
    }
}

} // namespace

ConsentService::ConsentService(const AccountBook &accounts, RequestTokenBook &requests)
    : m_accounts(accounts), m_requests(requests), m_key(RandomHex(20))
{
}

HttpReply ConsentService::Handle(HttpExchange &exchange)
{
    const HttpRequest &request = exchange.Request();
    if (request.method != "POST")
    {
        return Ask(request, ParseForm(request.Query()), "", false);
    }
    std::string body;
    exchange.ReadBody([&](std::string_view bytes) { return body.append(bytes).size() <= BodyLimit; });
    return Answer(request, ParseForm(body));
}

std::string ConsentService::FormKey(const std::string &visitor, const FormFields &fields) const
{
    return HmacSha1(m_key, visitor + "\n" + Field(fields, "oauth_token") + "\n" + Permission(fields));
}

std::string ConsentService::ApplicationName(const RequestToken &token) const
{
    const std::string name = m_accounts.ConsumerName(token.consumer);
    return name.empty() ? "without a name" : name;
}

HttpReply ConsentService::Ask(const HttpRequest &request, const FormFields &fields, const std::string &notice,
                              bool isUserUnknown)
{
    const auto token = m_requests.Find(Field(fields, "oauth_token"));
    if (!token || token->state != RequestTokenState::Pending)
    {
        return NothingToAnswer(token);
    }
    if (!IsPermission(Permission(fields)))
    {
        return Outcome(400, "This question can’t be understood",
                       "The program asks for a permission that doesn’t exist. Nothing was granted.");
    }
    const Account account = m_accounts.Get();
    const bool isCallable = token->callback != "oob";
    const std::string known = VisitorOf(request);
    const std::string visitor = known.empty() ? RandomHex(VisitorBytes) : known;
    ConsentQuestion question{ApplicationName(*token),
                             Permission(fields),
                             token->token,
                             FormKey(visitor, fields),
                             FindField(fields, "user").value_or(account.userName),
                             account.fullName,
                             isCallable ? HostOf(token->callback) : "",
                             token->secondsLeft,
                             notice,
                             isUserUnknown};
    HttpReply reply = PageReply(notice.empty() ? (isUserUnknown ? 422 : 200) : 403, ConsentQuestionPage(question),
                                isCallable ? "'self' " + OriginOf(token->callback) : "'self'");
    reply.headers.emplace_back("Set-Cookie", fmt::format("{}{}; Path=/services/oauth/; HttpOnly; SameSite=Lax{}",
                                                         CookieName, visitor, request.secure ? "; Secure" : ""));
    return reply;
}

HttpReply ConsentService::Answer(const HttpRequest &request, const FormFields &fields)
{
    const std::string visitor = VisitorOf(request);
    if (visitor.empty() || !IsFromOwnPage(request) ||
        !EqualSecretly(FormKey(visitor, fields), Field(fields, "form_key")))
    {
        return Ask(request, fields,
                   "Your answer did not count, since it didn’t come from this page as your browser shows it now. "
                   "Please answer once more. If that doesn’t help, let your browser keep cookies.",
                   false);
    }
    const std::string token = Field(fields, "oauth_token");
    const std::string decision = Field(fields, "decision");
    if (decision == "deny" && m_requests.Deny(token))
    {
        return Outcome(200, "Nothing was granted",
                       "You have said no, and the program can’t use your account. You can close this page.");
    }
    if (decision == "allow")
    {
        if (Field(fields, "user") != m_accounts.Get().userName)
        {
            return Ask(request, fields, "", true);
        }
        if (const auto granted = m_requests.Grant(token, Permission(fields)))
        {
            return Granted(*granted);
        }
    }
    return Ask(request, fields, "", false);
}

HttpReply ConsentService::Granted(const RequestToken &token) const
{
    if (token.callback == "oob")
    {
        return PageReply(200, ConsentCodePage(ApplicationName(token), token.verifier));
    }
    HttpReply reply = Outcome(302, "You have allowed it", "Your browser goes on by itself.");
    const char *joint = token.callback.find('?') == std::string::npos ? "?" : "&";
    reply.headers.emplace_back("Location", token.callback + joint + "oauth_token=" + token.token +
                                               "&oauth_verifier=" + token.verifier);
    return reply;
}

} // namespace loopback
