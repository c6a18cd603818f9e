#include "loopback/AdminService.h"

#include "loopback/PhotoIndex.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char Help[] =
    "POST account                  NAME=VALUE...: level=pro|basic max_file_size bandwidth_max bandwidth_used\n"
    "                              user_name full_name run (what the uploads of now are called at /compare)\n"
    "GET  tokens                   tokens and their permissions\n"
    "POST tokens                   token=T&secret=S[&permission=read|write|delete]\n"
    "GET  authorizations           request tokens, oldest first: pending granted denied used expired; and\n"
    "                              what the maker's endpoint has for each: none waiting taken expired\n"
    "POST authorizations/advance   seconds=N: they all become so much older\n"
    "POST faults                   kind=status|error|cut|no-answer|delay|stall|slow|garbage|truncated\n"
    "                              [&target=upload|rest|oauth|maker|any][&count=N][&skip=N] and, by kind:\n"
    "                              status=503&body=TEXT&store=1; code=105&message=M&store=1;\n"
    "                              after=BYTES (cut, stall); ms=MILLISECONDS (delay, stall); rate=BYTES a second\n"
    "GET  uploads                  every field of every photo, oldest first\n"
    "GET  requests                 the last 1000 requests, oldest first\n"
    "GET  statistics               how many secure connections were made since the start\n";

constexpr char PlainText[] = "text/plain; charset=utf-8";

// Bytes that aren't UTF-8 become U+FFFD.
HttpReply JsonReply(const Json &json)
{
    return {200, "application/json; charset=utf-8",
            json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n"};
}

HttpReply Outcome(const std::optional<std::string> &complaint)
{
    return {complaint ? 400 : 200, PlainText, complaint.value_or("ok") + "\n"};
}

// The list of what each makes of an item.
template <class Items, class Make>
Json ListOf(const Items &items, Make make)
{
    Json list = Json::array();
    for (const auto &item : items)
    {
        list.push_back(make(item));
    }
    return list;
}

} // namespace

HttpReply AdminService::Handle(const HttpRequest &request, const std::string &path, const FormFields &fields)
{
    if (request.IsFromForeignPage())
    {
        return {403, PlainText, "not from another site's page\n"};
    }
    return request.method == "POST" ? Change(path, fields) : Read(path);
}

HttpReply AdminService::Read(const std::string &path) const
{
    if (path == "tokens")
    {
        return JsonReply(ListOf(m_administered.accounts.Tokens(), [](const auto &token) {
            return Json{{"token", token.token}, {"permission", token.permission}};
        }));
    }
    if (path == "authorizations")
    {
        return JsonReply(ListOf(m_administered.requests.All(), [&](const auto &token) {
            return Json{{"token", token.token},
                        {"state", token.state},
                        {"permission", token.permission},
                        {"seconds_left", m_administered.requests.SecondsLeft(token)},
                        {"at_maker", m_administered.maker.StateOf(token.token)}};
        }));
    }
    if (path == "uploads")
    {
        auto photos = m_administered.photos.All();
        std::ranges::reverse(photos);
        return JsonReply(ListOf(photos, [&](const auto &photo) {
            Json json = PhotoJson(photo);
            json["id"] = std::to_string(photo.id);
            json["tag_list"] = SplitTags(photo.tags);
            json["path"] = m_administered.uploads.PathOf(photo).string();
            return json;
        }));
    }
    if (path == "requests")
    {
        return JsonReply(ListOf(m_administered.journal.Entries(), [](const Json &entry) { return entry; }));
    }
    if (path == "statistics")
    {
        return JsonReply({{"secure_connections", m_administered.secureConnections()}});
    }
    return {path.empty() ? 200 : 404, PlainText, Help};
}

HttpReply AdminService::Change(const std::string &path, const FormFields &fields)
{
    const auto field = [&](const char *name) { return FindField(fields, name).value_or(""); };
    if (path == "account")
    {
        for (const auto &[name, value] : fields)
        {
            if (const auto complaint = m_administered.accounts.Set(name, value))
            {
                return Outcome(complaint);
            }
        }
        return Outcome(std::nullopt);
    }
    if (path == "tokens" && !field("token").empty())
    {
        m_administered.accounts.AddToken(
            {field("token"), field("secret"), FindField(fields, "permission").value_or("write")});
        return Outcome(std::nullopt);
    }
    if (path == "authorizations/advance")
    {
        const auto seconds = ParseWholeNumber(field("seconds")).value_or(-1);
        if (seconds < 0 || seconds > 366 * 24 * 60 * 60)
        {
            return Outcome("seconds: a whole number from 0 to a year is wanted");
        }
        m_administered.advance(seconds);
        return Outcome(std::nullopt);
    }
    if (path == "faults")
    {
        return Outcome(m_administered.faults.Add(fields));
    }
    return {404, PlainText, Help};
}

} // namespace loopback
