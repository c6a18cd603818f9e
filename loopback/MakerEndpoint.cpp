#include "loopback/MakerEndpoint.h"

#include "loopback/PageFrame.h"
#include "loopback/XmlReply.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace loopback
{

namespace
{

constexpr std::string_view Place = "/flickr/authorization";
constexpr std::string_view ThankYou = "/flickr/authorization/granted";
constexpr char Collection[] = "verifiers";
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

HttpReply Document(int status, const char *element, const std::string &text)
{
    HttpReply reply{status, "text/xml; charset=utf-8",
                    XmlDocument(Element("TRNQVerifierExchange", {}, Element(element, {}, EscapeMarkup(text))))};
    reply.headers = {{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}};
    return reply;
}

HttpReply Problem(int status, const std::string &words)
{
    return Document(status, "Problem", words);
}

} // namespace

HttpReply MakerEndpoint::Handle(const HttpRequest &request)
{
    std::string path = request.Path();
    if (path.ends_with('/'))
    {
        path.pop_back();
    }
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
    const std::lock_guard lock(m_mutex);
    // Only the first counts: loading the page again must not restore a verifier that was handed over.
    if (!m_documents.Find(Collection, token))
    {
        m_documents.Put(Collection, token, {{"verifier", verifier}, {"expires", m_clock() + RequestTokenLife}});
    }
    // Redirect to an address without the verifier, so that neither address bar nor history shows it.
    HttpReply reply = PageReply(303, ThankYouPage());
    reply.headers.emplace_back("Location", ThankYou);
    return reply;
}

std::string MakerEndpoint::StateOf(const std::string &token) const
{
    const auto kept = m_documents.Find(Collection, token);
    return !kept                              ? "none"
           : kept->at("verifier") == ""       ? "taken"
           : kept->at("expires") <= m_clock() ? "expired"
                                              : "waiting";
}

HttpReply MakerEndpoint::HandOver(const HttpRequest &request, const std::string &token)
{
    if (!request.secure)
    {
        return Problem(403, "A verifier is handed over by https only.");
    }
    const std::lock_guard lock(m_mutex);
    if (StateOf(token) != "waiting")
    {
        return Problem(404, "There is no verifier for this token.");
    }
    const std::string verifier = m_documents.Find(Collection, token)->at("verifier");
    m_documents.Put(Collection, token, {{"verifier", ""}, {"expires", m_clock()}});
    return Document(200, "Verifier", verifier);
}

} // namespace loopback
