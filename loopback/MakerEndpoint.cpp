#include "loopback/MakerEndpoint.h"

#include "loopback/PageFrame.h"
#include "loopback/XmlReply.h"

#include <algorithm>

namespace loopback
{

namespace
{

constexpr std::string_view Place = "/flickr/authorization";
constexpr std::string_view ThankYou = "/flickr/authorization/granted";
constexpr std::int64_t KeepSeconds = 24 * 60 * 60;
constexpr std::size_t LongestValue = 200;

constexpr char Style[] = R"(
header{padding:1.1rem 1.25rem;text-align:center;font-weight:700;letter-spacing:.01em}
main{max-width:35rem;margin:0 auto;padding:0 1rem 3rem;text-align:center}
.sheet{background:var(--card);border:1px solid var(--line);border-radius:14px;box-shadow:var(--shade);
padding:clamp(1.5rem,6vw,2.75rem)}
.mark{width:3.6rem;height:3.6rem;margin:0 auto 1.1rem;border-radius:50%;display:grid;place-items:center;
font-size:1.8rem;background:var(--good);color:var(--card)}
:root{--good:#1c7c45}@media(prefers-color-scheme:dark){:root{--good:#63d391}}
h1{font-size:1.5rem;line-height:1.25;margin:0 0 .8rem;letter-spacing:-.015em}
p{margin:.5rem 0 0}.sheet p+p{color:var(--soft)}
)";

std::string Page(const std::string &title, const std::string &html)
{
    return PageFrame(
        {title, Style, "Halvora", "<section class=\"sheet\" aria-labelledby=\"heading\">" + html + "</section>"});
}

std::string ThankYouPage()
{
    return Page("Return to Halvora",
                "<div class=\"mark\" aria-hidden=\"true\">✓</div>"
                "<h1 id=\"heading\">You can return to Halvora now</h1>"
                "<p>Flickr has passed on your permission. In Halvora, choose <b>Authorization Granted</b>.</p>"
                "<p>You can close this page.</p>");
}

std::string LostPage()
{
    return Page("Nothing to do here", "<h1 id=\"heading\">There is nothing to do here</h1>"
                                      "<p>Flickr sends you to this address after you have given Halvora your "
                                      "permission. To do so, start the authorization in Halvora.</p>");
}

// Whether the value can be a token or verifier of the service; no others are kept.
bool IsPlain(const std::string &value)
{
    return !value.empty() && value.size() <= LongestValue &&
           std::all_of(value.begin(), value.end(), [](char c) { return c > ' ' && c < 0x7F; });
}

HttpReply Document(int status, std::vector<XmlElement> children)
{
    HttpReply reply{status, "text/xml; charset=utf-8",
                    WriteXml({"TRNQVerifierExchange", {}, "", std::move(children)})};
    reply.headers = {{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}};
    return reply;
}

HttpReply Problem(int status, const std::string &words)
{
    return Document(status, {{"Problem", {}, words}});
}

} // namespace

MakerEndpoint::MakerEndpoint(Database &database, Seconds now, Seconds lifetime)
    : m_database(database), m_now(std::move(now)), m_lifetime(std::move(lifetime))
{
    database.Run("CREATE TABLE IF NOT EXISTS verifiers (token TEXT PRIMARY KEY, verifier TEXT NOT NULL, "
                 "kept INTEGER NOT NULL)");
}

HttpReply MakerEndpoint::Handle(const HttpRequest &request)
{
    std::string path = request.Path();
    path.resize(path.size() - (path.ends_with('/') ? 1 : 0));
    if (path == ThankYou)
    {
        return PageReply(200, ThankYouPage());
    }
    // A HEAD request must neither store nor hand over a verifier.
    if (path != Place || request.method != "GET")
    {
        return PageReply(path == Place ? 405 : 404, LostPage());
    }
    const FormFields fields = ParseForm(request.Query());
    const std::string token = FindField(fields, "oauth_token").value_or("");
    if (const auto verifier = FindField(fields, "oauth_verifier"))
    {
        return IsPlain(token) && IsPlain(*verifier) ? Keep(token, *verifier) : PageReply(400, LostPage());
    }
    return token.empty() ? PageReply(400, LostPage()) : HandOver(request, token);
}

HttpReply MakerEndpoint::Keep(const std::string &token, const std::string &verifier)
{
    std::lock_guard lock(m_mutex);
    m_database.Run("DELETE FROM verifiers WHERE kept < ?", {m_now() - KeepSeconds - m_lifetime()});
    // Only the first counts: loading the page again must not restore a verifier that was handed over.
    m_database.Run("INSERT OR IGNORE INTO verifiers VALUES (?, ?, ?)", {token, verifier, m_now()});
    // Redirect to an address without the verifier, so that neither address bar nor history shows it.
    HttpReply reply = PageReply(303, ThankYouPage());
    reply.headers.emplace_back("Location", ThankYou);
    return reply;
}

HttpReply MakerEndpoint::HandOver(const HttpRequest &request, const std::string &token)
{
    if (!request.secure)
    {
        return Problem(403, "A verifier is handed over by https only.");
    }
    std::lock_guard lock(m_mutex);
    const auto rows =
        m_database.Run("SELECT verifier FROM verifiers WHERE token = ? AND verifier <> '' AND kept > ?",
                       {token, m_now() - m_lifetime()});
    if (rows.empty())
    {
        return Problem(404, "There is no verifier for this token.");
    }
    m_database.Run("UPDATE verifiers SET verifier = '' WHERE token = ?", {token});
    return Document(200, {{"Verifier", {}, TextAt(rows[0], 0)}});
}

std::vector<std::pair<std::string, std::string>> MakerEndpoint::States() const
{
    std::vector<std::pair<std::string, std::string>> states;
    for (const auto &row : m_database.Run("SELECT token, verifier <> '', kept FROM verifiers ORDER BY rowid"))
    {
        const bool isExpired = NumberAt(row, 2) <= m_now() - m_lifetime();
        states.emplace_back(TextAt(row, 0), NumberAt(row, 1) == 0 ? "taken" : isExpired ? "expired" : "waiting");
    }
    return states;
}

void MakerEndpoint::Advance(std::int64_t seconds)
{
    m_database.Run("UPDATE verifiers SET kept = kept - ?", {seconds});
}

} // namespace loopback
