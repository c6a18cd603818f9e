#include "loopback/ConsentService.h"

#include "loopback/ConsentPage.h"
#include "loopback/PageFrame.h"

#include <algorithm>
#include <array>

namespace loopback
{

namespace
{

constexpr char ApplicationName[] = "Halvora";

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
    return permission == "read" || permission == "write" || permission == "delete";
}

// "http://host:1/path?query" without its path.
std::string OriginOf(const std::string &address)
{
    return address.substr(0, address.find_first_of("/?", address.find("://") + 3));
}

HttpReply Outcome(int status, std::string_view heading, std::string_view text)
{
    return PageReply(status, ConsentOutcomePage(heading, text));
}

struct Ending
{
    std::string_view state;
    int status;
    std::string_view heading;
    std::string_view text;
};

// Why a request token can't be granted or denied now; the first is for a token that isn't known.
constexpr std::array Endings = {
    Ending{"", 404, "This question isn’t known here",
           "The address is incomplete, or the question was asked too long ago. Go back to the program that opened "
           "this page and start the authorization again."},
    Ending{Denied, 410, "You have already said no",
           "Nothing was granted. If you have changed your mind, start the authorization again in the program that "
           "opened this page."},
    Ending{Expired, 410, "The time for this question is over",
           "Nothing was granted. Go back to the program that opened this page and start the authorization again."},
    Ending{Granted, 410, "You have already allowed this",
           "There is nothing more to do here. Go back to the program that opened this page."},
    Ending{Used, 410, "You have already allowed this",
           "There is nothing more to do here. Go back to the program that opened this page."},
};

} // namespace

HttpReply ConsentService::Handle(const HttpRequest &request, const FormFields &fields)
{
    if (request.method != "POST")
    {
        return Ask(ParseForm(request.Query()), false);
    }
    if (request.IsFromForeignPage())
    {
        return Outcome(403, "Your answer did not count", "It didn’t come from this service’s own page.");
    }
    return Answer(fields);
}

HttpReply ConsentService::Ask(const FormFields &fields, bool isUserUnknown) const
{
    const auto token = m_requests.Find(Field(fields, "oauth_token"));
    if (!token || token->state != Pending)
    {
        const auto *ending = std::ranges::find(Endings, token ? token->state : "", &Ending::state);
        return Outcome(ending->status, ending->heading, ending->text);
    }
    const std::string permission = Permission(fields);
    if (!IsPermission(permission))
    {
        return Outcome(400, "This question can’t be understood",
                       "The program asks for a permission that doesn’t exist. Nothing was granted.");
    }
    const Account account = m_accounts.Get();
    const std::string origin = OriginOf(token->callback);
    const ConsentQuestion question{ApplicationName,
                                   permission,
                                   token->token,
                                   FindField(fields, "user").value_or(account.userName),
                                   account.fullName,
                                   origin.substr(origin.find("://") + 3),
                                   m_requests.SecondsLeft(*token),
                                   isUserUnknown};
    return PageReply(isUserUnknown ? 422 : 200, ConsentQuestionPage(question), "'self' " + origin);
}

HttpReply ConsentService::Answer(const FormFields &fields)
{
    const std::string token = Field(fields, "oauth_token");
    const std::string decision = Field(fields, "decision");
    if (decision == "deny" && m_requests.Deny(token))
    {
        return Outcome(200, "Nothing was granted",
                       "You have said no, and the program can’t use your account. You can close this page.");
    }
    if (decision == "allow" && IsPermission(Permission(fields)))
    {
        if (Field(fields, "user") != m_accounts.Get().userName)
        {
            return Ask(fields, true);
        }
        if (const auto granted = m_requests.Grant(token, Permission(fields)))
        {
            HttpReply reply = Outcome(302, "You have allowed it", "Your browser goes on by itself.");
            const char *joint = granted->callback.find('?') == std::string::npos ? "?" : "&";
            reply.headers.emplace_back("Location", granted->callback + joint + "oauth_token=" + granted->token +
                                                       "&oauth_verifier=" + granted->verifier);
            return reply;
        }
    }
    return Ask(fields, false);
}

} // namespace loopback
