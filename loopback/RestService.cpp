#include "loopback/RestService.h"

#include "loopback/XmlReply.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>

namespace loopback
{

namespace
{

struct Call
{
    const TokenRecord &token;
    const Account &account;
    const FormFields &fields;
};

HttpReply CheckToken(const Call &call)
{
    HttpReply reply = OkReply(Element("oauth", {},
                                      Element("token", {}, EscapeMarkup(call.token.token)) +
                                          Element("perms", {}, call.token.permission) +
                                          Element("user", {{"nsid", AccountId},
                                                           {"username", call.account.userName},
                                                           {"fullname", call.account.fullName}})));
    // The real service begins some of its replies with an empty line.
    reply.body.insert(0, "\n");
    return reply;
}

HttpReply GetUserPhotos(const Call &call)
{
    return OkReply(Element(
        "user", {{"nsid", AccountId}, {"url", "https://www.flickr.com/photos/" + call.account.userName + "/"}}));
}

HttpReply GetUploadStatus(const Call &call)
{
    const Account &account = call.account;
    const auto text = [](std::int64_t number) { return std::to_string(number); };
    const auto left = std::max<std::int64_t>(account.bandwidthMax - account.bandwidthUsed, 0);
    const XmlAttributes bandwidth = {{"max", text(account.bandwidthMax)},
                                     {"used", text(account.bandwidthUsed)},
                                     {"maxbytes", text(account.bandwidthMax)},
                                     {"usedbytes", text(account.bandwidthUsed)},
                                     {"remainingbytes", text(left)},
                                     {"maxkb", text(account.bandwidthMax / 1024)},
                                     {"usedkb", text(account.bandwidthUsed / 1024)},
                                     {"remainingkb", text(left / 1024)},
                                     {"unlimited", account.IsUnlimited() ? "1" : "0"}};
    const XmlAttributes fileSize = {{"max", text(account.maxFileSize)},
                                    {"maxbytes", text(account.maxFileSize)},
                                    {"maxkb", text(account.maxFileSize / 1024)},
                                    {"maxmb", text(account.maxFileSize / 1024 / 1024)}};
    return OkReply(
        Element("user", {{"id", AccountId}, {"username", account.userName}, {"ispro", account.isPro ? "1" : "0"}},
                Element("username", {}, EscapeMarkup(account.userName)) + Element("bandwidth", bandwidth) +
                    Element("filesize", fileSize)));
}

// A ticket tells what became of its picture.
HttpReply CheckTickets(const Call &call)
{
    std::string answers;
    std::istringstream tickets(FindField(call.fields, "tickets").value_or(""));
    for (std::string ticket; std::getline(tickets, ticket, ',');)
    {
        XmlAttributes answer = {{"id", ticket}};
        if (ticket.starts_with(RefusedTicket))
        {
            answer.emplace_back("complete", "2");
        }
        else if (ticket.starts_with(Ticket))
        {
            answer.emplace_back("complete", "1");
            answer.emplace_back("photoid", ticket.substr(std::strlen(Ticket)));
        }
        else
        {
            answer.emplace_back("invalid", "1");
        }
        answers += Element("ticket", answer);
    }
    return OkReply(Element("uploader", {}, answers));
}

struct Method
{
    const char *name;
    HttpReply (*answer)(const Call &);
};

constexpr std::array Methods = {
    Method{"flickr.auth.oauth.checkToken", CheckToken},
    Method{"flickr.urls.getUserPhotos", GetUserPhotos},
    Method{"flickr.people.getUploadStatus", GetUploadStatus},
    Method{"flickr.photos.upload.checkTickets", CheckTickets},
};

} // namespace

std::string RestMethod(const HttpRequest &request, const FormFields &fields)
{
    const auto inQuery = FindField(ParseForm(request.Query()), "method");
    return inQuery ? *inQuery : FindField(fields, "method").value_or("");
}

HttpReply RestService::Handle(const HttpRequest &request, const FormFields &fields)
{
    const std::string name = RestMethod(request, fields);
    const auto method = std::ranges::find(Methods, name, &Method::name);
    if (method == Methods.end())
    {
        return FailReply(112, "Method \"" + name + "\" not found");
    }
    const Caller caller = m_admission.Admit(request, fields, Permission::Read);
    return caller.refusal ? *caller.refusal : method->answer({caller.token, m_accounts.Get(), fields});
}

} // namespace loopback
