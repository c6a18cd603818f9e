#include "loopback/AdminService.h"

#include "loopback/JsonWriter.h"
#include "loopback/UploadParameters.h"

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char Help[] =
    "GET  account                  the account's properties\n"
    "POST account                  NAME=VALUE...: level=pro|basic max_file_size bandwidth_max bandwidth_used\n"
    "                              user_name full_name photos_url nsid refuse_duplicates ticket_delay_ms\n"
    "                              request_token_seconds run (what the uploads of now are called at /compare)\n"
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

HttpReply Json(std::string json)
{
    return {200, "application/json; charset=utf-8", std::move(json) + "\n"};
}

HttpReply Done()
{
    return {200, "text/plain; charset=utf-8", "ok\n"};
}

HttpReply Refused(const std::string &words)
{
    return {400, "text/plain; charset=utf-8", words + "\n"};
}

void WritePhoto(JsonWriter &json, const PhotoRecord &photo, const std::string &path)
{
    json.BeginObject();
    const auto text = [&](const char *name, const std::string &value) { json.Name(name).Text(value); };
    const auto number = [&](const char *name, std::int64_t value) { json.Name(name).Number(value); };
    text("id", std::to_string(photo.id));
    text("title", photo.title);
    text("description", photo.description);
    text("tags", photo.tags);
    json.Name("tag_list").BeginArray();
    for (const auto &tag : SplitTags(photo.tags))
    {
        json.Text(tag);
    }
    json.EndArray();
    number("is_public", photo.isPublic);
    number("is_friend", photo.isFriend);
    number("is_family", photo.isFamily);
    number("safety_level", photo.safetyLevel);
    number("content_type", photo.contentType);
    number("hidden", photo.hidden);
    number("async", !photo.ticket.empty());
    text("ticket", photo.ticket);
    text("file_name", photo.fileName);
    text("mime_type", photo.mimeType);
    text("detected_type", photo.detectedType);
    text("path", path);
    text("sha256", photo.sha256);
    number("size", photo.size);
    number("uploaded", photo.uploaded);
    text("token", photo.token);
    text("user_agent", photo.userAgent);
    number("connection", photo.connection);
    text("run", photo.run);
    json.EndObject();
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
        JsonWriter json;
        json.BeginObject();
        for (const auto &[name, value] : m_accounts.Properties())
        {
            json.Name(name).Text(value);
        }
        json.EndObject();
        return Json(json.Json());
    }
    if (path == "tokens")
    {
        JsonWriter json;
        json.BeginArray();
        for (const auto &token : m_accounts.Tokens())
        {
            json.BeginObject().Name("token").Text(token.token).Name("permission").Text(token.permission);
            json.EndObject();
        }
        json.EndArray();
        return Json(json.Json());
    }
    if (path == "authorizations")
    {
        return Json(AuthorizationsJson());
    }
    if (path == "faults")
    {
        return Json(FaultsJson());
    }
    if (path == "uploads")
    {
        return Json(UploadsJson());
    }
    if (path == "requests")
    {
        return Json(JournalJson());
    }
    if (path == "statistics")
    {
        return Json(StatisticsJson());
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

std::string AdminService::AuthorizationsJson() const
{
    const auto kept = m_maker.States();
    JsonWriter json;
    json.BeginArray();
    for (const auto &token : m_requests.All())
    {
        const auto atMaker =
            std::find_if(kept.begin(), kept.end(), [&](const auto &entry) { return entry.first == token.token; });
        json.BeginObject();
        json.Name("token").Text(token.token);
        json.Name("application").Text(m_accounts.ConsumerName(token.consumer));
        json.Name("state").Text(StateName(token.state));
        json.Name("permission").Text(token.permission);
        json.Name("seconds_left").Number(token.secondsLeft);
        json.Name("at_maker").Text(atMaker == kept.end() ? "none" : atMaker->second);
        json.EndObject();
    }
    json.EndArray();
    return json.Json();
}

std::string AdminService::UploadsJson() const
{
    auto photos = m_photos.All();
    std::reverse(photos.begin(), photos.end());
    JsonWriter json;
    json.BeginArray();
    for (const auto &photo : photos)
    {
        WritePhoto(json, photo, m_uploads.PathOf(photo).string());
    }
    json.EndArray();
    return json.Json();
}

std::string AdminService::JournalJson() const
{
    JsonWriter json;
    json.BeginArray();
    for (const auto &entry : m_journal.Entries())
    {
        json.BeginObject();
        json.Name("connection").Number(static_cast<std::int64_t>(entry.connection));
        json.Name("secure").Flag(entry.secure);
        json.Name("http_method").Text(entry.httpMethod);
        json.Name("host").Text(entry.host);
        json.Name("path").Text(entry.path);
        json.Name("method").Text(entry.apiMethod);
        json.Name("user_agent").Text(entry.userAgent);
        json.Name("content_type").Text(entry.contentType);
        json.Name("content_length").Text(entry.contentLength);
        json.Name("expect").Text(entry.expect);
        json.Name("fault").Text(entry.fault);
        json.Name("status").Number(entry.status);
        json.Name("answered").Flag(entry.answered);
        json.EndObject();
    }
    json.EndArray();
    return json.Json();
}

std::string AdminService::FaultsJson() const
{
    JsonWriter json;
    json.BeginArray();
    for (const auto &fault : m_faults.Pending())
    {
        json.BeginObject();
        json.Name("kind").Text(FaultName(fault.kind)).Name("target").Text(fault.target);
        json.Name("count").Number(fault.count).Name("skip").Number(fault.skip);
        json.EndObject();
    }
    json.EndArray();
    return json.Json();
}

std::string AdminService::StatisticsJson() const
{
    const ConnectionCounts counts = m_counts();
    JsonWriter json;
    json.BeginObject();
    const auto number = [&](const char *name, std::uint64_t value) {
        json.Name(name).Number(static_cast<std::int64_t>(value));
    };
    number("connections", counts.accepted);
    number("secure_connections", counts.secure);
    number("resumed_sessions", counts.resumed);
    number("open_connections", counts.open);
    number("requests", counts.requests);
    json.EndObject();
    return json.Json();
}

} // namespace loopback
