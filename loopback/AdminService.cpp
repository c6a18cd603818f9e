#include "loopback/AdminService.h"

#include "loopback/UploadParameters.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char Help[] =
    "GET  account                  the account's properties\n"
    "POST account                  NAME=VALUE...: level=pro|basic max_file_size bandwidth_max bandwidth_used\n"
    "                              user_name full_name photos_url nsid refuse_duplicates request_token_seconds\n"
    "                              run (what the uploads of now are called at /compare)\n"
    "GET  tokens                   tokens and their permissions\n"
    "POST tokens                   token=T&secret=S[&permission=read|write|delete]\n"
    "POST tokens/remove            token=T\n"
    "POST consumers                key=K&secret=S[&name=N]: an application\n"
    "GET  authorizations           request tokens, oldest first: pending granted denied used expired; and\n"
    "                              what the maker's endpoint has for each: none waiting taken expired\n"
    "POST authorizations/advance   seconds=N: they all become so much older\n"
    "GET  faults                   what is still to be played\n"
    "POST faults                   kind=status|error|cut|no-answer|delay|stall|slow|garbage|truncated\n"
    "                              [&target=upload|rest|oauth|maker|any][&count=N][&skip=N] and, by kind:\n"
    "                              status=503&body=html|text|empty|TEXT&type=TYPE&store=1; "
    "code=105&message=M&store=1;\n"
    "                              after=BYTES (cut, stall); ms=MILLISECONDS (delay, stall); rate=BYTES a second\n"
    "POST faults/clear\n"
    "GET  uploads                  every field of every photo, oldest first\n"
    "POST uploads/clear\n"
    "GET  requests                 the last 1000 requests, oldest first\n"
    "POST requests/clear\n"
    "GET  statistics               connections and requests since the start\n";

using Json = nlohmann::ordered_json;

// Bytes that aren't UTF-8 become U+FFFD.
HttpReply JsonReply(const Json &json)
{
    return {200, "application/json; charset=utf-8",
            json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n"};
}

HttpReply Done()
{
    return {200, "text/plain; charset=utf-8", "ok\n"};
}

HttpReply Refused(const std::string &words)
{
    return {400, "text/plain; charset=utf-8", words + "\n"};
}

Json PhotoJson(const PhotoRecord &photo, const std::string &path)
{
    return {{"id", std::to_string(photo.id)},
            {"title", photo.title},
            {"description", photo.description},
            {"tags", photo.tags},
            {"tag_list", SplitTags(photo.tags)},
            {"is_public", +photo.isPublic},
            {"is_friend", +photo.isFriend},
            {"is_family", +photo.isFamily},
            {"safety_level", photo.safetyLevel},
            {"content_type", photo.contentType},
            {"hidden", photo.hidden},
            {"async", +!photo.ticket.empty()},
            {"ticket", photo.ticket},
            {"file_name", photo.fileName},
            {"mime_type", photo.mimeType},
            {"detected_type", photo.detectedType},
            {"path", path},
            {"sha256", photo.sha256},
            {"size", photo.size},
            {"uploaded", photo.uploaded},
            {"token", photo.token},
            {"user_agent", photo.userAgent},
            {"connection", photo.connection},
            {"run", photo.run}};
}

Json FaultJson(const Fault &fault)
{
    return {
        {"kind", FaultName(fault.kind)}, {"target", fault.target}, {"count", fault.count}, {"skip", fault.skip}};
}

Json JournalJson(const JournalEntry &entry)
{
    return {{"connection", entry.connection},
            {"secure", entry.secure},
            {"http_method", entry.httpMethod},
            {"host", entry.host},
            {"path", entry.path},
            {"method", entry.apiMethod},
            {"user_agent", entry.userAgent},
            {"content_type", entry.contentType},
            {"content_length", entry.contentLength},
            {"expect", entry.expect},
            {"fault", entry.fault},
            {"status", entry.status},
            {"answered", entry.answered}};
}

Json StatisticsJson(const ConnectionCounts &counts)
{
    return {{"connections", counts.accepted},
            {"secure_connections", counts.secure},
            {"resumed_sessions", counts.resumed},
            {"open_connections", counts.open},
            {"requests", counts.requests}};
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

Json AuthorizationsJson(const AccountBook &accounts, const RequestTokenBook &requests, const MakerEndpoint &maker)
{
    const auto kept = maker.States();
    return ListOf(requests.All(), [&](const auto &token) {
        const auto atMaker = std::ranges::find(kept, token.token, [](const auto &entry) { return entry.first; });
        return Json{{"token", token.token},
                    {"application", accounts.ConsumerName(token.consumer)},
                    {"state", StateName(token.state)},
                    {"permission", token.permission},
                    {"seconds_left", token.secondsLeft},
                    {"at_maker", atMaker == kept.end() ? "none" : atMaker->second}};
    });
}

// A page of another site may make the browser send a form here, but the browser then names that site in
// the Origin header.
bool IsForeignPage(const HttpRequest &request)
{
    const std::string origin = request.Header("origin");
    return !origin.empty() && origin != "http://" + request.host && origin != "https://" + request.host;
}

} // namespace

AdminService::AdminService(AccountBook &accounts, RequestTokenBook &requests, MakerEndpoint &maker,
                           PhotoIndex &photos, UploadService &uploads, FaultQueue &faults, RequestJournal &journal,
                           CountConnections counts)
    : m_accounts(accounts),
      m_requests(requests),
      m_maker(maker),
      m_photos(photos),
      m_uploads(uploads),
      m_faults(faults),
      m_journal(journal),
      m_counts(std::move(counts))
{
}

HttpReply AdminService::Handle(HttpExchange &exchange, const std::string &path)
{
    const HttpRequest &request = exchange.Request();
    if (IsForeignPage(request))
    {
        return {403, "text/plain; charset=utf-8", "not from another site's page\n"};
    }
    if (request.method != "POST")
    {
        return Read(path);
    }
    std::string body;
    exchange.ReadBody([&](std::string_view bytes) { return body.append(bytes).size() < 1024 * 1024; });
    FormFields fields = ParseForm(body);
    const FormFields query = ParseForm(request.Query());
    fields.insert(fields.end(), query.begin(), query.end());
    return Change(path, fields);
}

HttpReply AdminService::Read(const std::string &path) const
{
    if (path == "account")
    {
        Json json = Json::object();
        for (const auto &[name, value] : m_accounts.Properties())
        {
            json[name] = value;
        }
        return JsonReply(json);
    }
    if (path == "tokens")
    {
        return JsonReply(ListOf(m_accounts.Tokens(), [](const auto &token) {
            return Json{{"token", token.token}, {"permission", token.permission}};
        }));
    }
    if (path == "authorizations")
    {
        return JsonReply(AuthorizationsJson(m_accounts, m_requests, m_maker));
    }
    if (path == "faults")
    {
        return JsonReply(ListOf(m_faults.Pending(), FaultJson));
    }
    if (path == "uploads")
    {
        auto photos = m_photos.All();
        std::ranges::reverse(photos);
        return JsonReply(
            ListOf(photos, [&](const auto &photo) { return PhotoJson(photo, m_uploads.PathOf(photo).string()); }));
    }
    if (path == "requests")
    {
        return JsonReply(ListOf(m_journal.Entries(), JournalJson));
    }
    if (path == "statistics")
    {
        return JsonReply(StatisticsJson(m_counts()));
    }
    return {path.empty() ? 200 : 404, "text/plain; charset=utf-8", Help};
}

HttpReply AdminService::Change(const std::string &path, const FormFields &fields)
{
    const auto field = [&](const char *name) { return FindField(fields, name).value_or(""); };
    if (path == "account")
    {
        for (const auto &[name, value] : fields)
        {
            if (const auto complaint = m_accounts.Set(name, value))
            {
                return Refused(*complaint);
            }
        }
        return Done();
    }
    if (path == "tokens" && !field("token").empty())
    {
        const std::string permission = FindField(fields, "permission").value_or("write");
        if (permission != "read" && permission != "write" && permission != "delete")
        {
            return Refused("the permission is read, write or delete");
        }
        m_accounts.AddToken({field("token"), field("secret"), permission});
        return Done();
    }
    if (path == "tokens/remove")
    {
        m_accounts.RemoveToken(field("token"));
        return Done();
    }
    if (path == "consumers" && !field("key").empty())
    {
        m_accounts.AddConsumer(field("key"), field("secret"), field("name"));
        return Done();
    }
    if (path == "authorizations/advance")
    {
        const auto seconds = ParseWholeNumber(field("seconds")).value_or(-1);
        if (seconds < 0 || seconds > 366 * 24 * 60 * 60)
        {
            return Refused("seconds: a whole number from 0 to a year is wanted");
        }
        m_requests.Advance(seconds);
        m_maker.Advance(seconds);
        return Done();
    }
    if (path == "faults")
    {
        Fault fault;
        if (const auto complaint = ReadFault(fields, fault))
        {
            return Refused(*complaint);
        }
        m_faults.Add(fault);
        return Done();
    }
    if (path == "faults/clear")
    {
        m_faults.Clear();
        return Done();
    }
    if (path == "uploads/clear")
    {
        m_uploads.Clear();
        return Done();
    }
    if (path == "requests/clear")
    {
        m_journal.Clear();
        return Done();
    }
    return {404, "text/plain; charset=utf-8", Help};
}

} // namespace loopback
