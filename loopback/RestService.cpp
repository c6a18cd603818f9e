#include "loopback/RestService.h"

#include "loopback/XmlReply.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace loopback
{

namespace
{

constexpr std::size_t BodyLimit = 1024 * 1024;

struct Call
{
    const TokenRecord &token;
    const Account &account;
    const PhotoIndex &photos;
    const FormFields &fields;
};

HttpReply CheckToken(const Call &call)
{
    const auto &account = call.account;
    HttpReply reply = OkReply(
        {{"oauth",
          {},
          "",
          {{"token", {}, call.token.token},
           {"perms", {}, call.token.permission},
           {"user", {{"nsid", account.nsid}, {"username", account.userName}, {"fullname", account.fullName}}}}}});
    // The real service begins some of its replies with an empty line.
    reply.body.insert(0, "\n");
    return reply;
}

HttpReply GetUserPhotos(const Call &call)
{
    return OkReply({{"user", {{"nsid", call.account.nsid}, {"url", call.account.photosUrl}}}});
}

HttpReply TestLogin(const Call &call)
{
    return OkReply({{"user", {{"id", call.account.nsid}}, "", {{"username", {}, call.account.userName}}}});
}

HttpReply GetUploadStatus(const Call &call)
{
    const Account &account = call.account;
    const auto text = [](std::int64_t number) { return std::to_string(number); };
    const bool isUnlimited = account.isPro || account.bandwidthMax == 0;
    const auto left = std::max<std::int64_t>(account.bandwidthMax - account.bandwidthUsed, 0);
    XmlElement bandwidth{"bandwidth",
                         {{"max", text(account.bandwidthMax)},
                          {"used", text(account.bandwidthUsed)},
                          {"maxbytes", text(account.bandwidthMax)},
                          {"usedbytes", text(account.bandwidthUsed)},
                          {"remainingbytes", text(left)},
                          {"maxkb", text(account.bandwidthMax / 1024)},
                          {"usedkb", text(account.bandwidthUsed / 1024)},
                          {"remainingkb", text(left / 1024)},
                          {"unlimited", isUnlimited ? "1" : "0"}}};
    XmlElement fileSize{"filesize",
                        {{"max", text(account.maxFileSize)},
                         {"maxbytes", text(account.maxFileSize)},
                         {"maxkb", text(account.maxFileSize / 1024)},
                         {"maxmb", text(account.maxFileSize / 1024 / 1024)}}};
    return OkReply({{"user",
                     {{"id", account.nsid}, {"username", account.userName}, {"ispro", account.isPro ? "1" : "0"}},
                     "",
                     {{"username", {}, account.userName},
                      std::move(bandwidth),
                      std::move(fileSize),
                      {"sets", {{"created", "0"}, {"remaining", "lots"}}},
                      {"videos", {{"uploaded", "0"}, {"remaining", "lots"}}}}}});
}

// Here an asynchronous upload is worked on at once, so a ticket without a photo is that of a refused one.
HttpReply CheckTickets(const Call &call)
{
    XmlElement uploader{"uploader"};
    std::istringstream list(FindField(call.fields, "tickets").value_or(""));
    for (std::string ticket; std::getline(list, ticket, ',');)
    {
        XmlElement element{"ticket", {{"id", ticket}}};
        const auto photo = call.photos.FindByTicket(ticket);
        if (photo)
        {
            element.attributes.emplace_back("complete", "1");
            element.attributes.emplace_back("photoid", std::to_string(*photo));
        }
        else
        {
            const bool isRefused = ticket.starts_with(TicketPrefix);
            element.attributes.emplace_back(isRefused ? "complete" : "invalid", isRefused ? "2" : "1");
        }
        uploader.children.push_back(std::move(element));
    }
    return OkReply({std::move(uploader)});
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
    Method{"flickr.test.login", TestLogin},
};

} // namespace

RestService::RestService(AccountBook &accounts, const PhotoIndex &photos, Admission &admission)
    : m_accounts(accounts), m_photos(photos), m_admission(admission)
{
}

RestReply RestService::Handle(HttpExchange &exchange)
{
    const HttpRequest &request = exchange.Request();
    std::string body;
    if (!exchange.ReadBody([&](std::string_view bytes) { return body.append(bytes).size() <= BodyLimit; }))
    {
        return {HttpReply{400}, ""};
    }
    FormFields bodyFields;
    if (request.Header("content-type").starts_with("application/x-www-form-urlencoded"))
    {
        bodyFields = ParseForm(body);
    }
    FormFields fields = ParseForm(request.Query());
    fields.insert(fields.end(), bodyFields.begin(), bodyFields.end());

    const std::string name = FindField(fields, "method").value_or("");
    const auto method = std::find_if(Methods.begin(), Methods.end(),
                                     [&](const Method &candidate) { return name == candidate.name; });
    if (method == Methods.end())
    {
        return {FailReply(112, "Method \"" + name + "\" not found"), name};
    }
    if (FindField(fields, "format").value_or("rest") != "rest")
    {
        return {FailReply(111, "Format \"" + *FindField(fields, "format") + "\" not found"), name};
    }
    const Caller caller = m_admission.Admit(request, bodyFields, Permission::Read);
    if (caller.refusal)
    {
        return {*caller.refusal, name};
    }
    return {method->answer({caller.token, m_accounts.Get(), m_photos, fields}), name};
}

} // namespace loopback
