#include "webclient/ShownText.h"

#include "com/AsciiText.h"
#include "com/SafeText.h"
#include "webclient/RequestUrl.h"

#include <algorithm>
#include <utility>

namespace
{
using Words = std::pair<std::string_view, std::string_view>;

// The problems of OAuth's problem reporting extension, as services send them.
constexpr Words OAuthProblems[] = {
    {"signature_invalid", "The service did not accept the signature of the request"},
    {"signature_method_rejected", "The service does not accept this way of signing"},
    {"token_rejected", "The service does not know the authorization, or it was revoked: authorize again"},
    {"token_expired", "The authorization has expired: authorize again"},
    {"token_revoked", "The authorization was revoked: authorize again"},
    {"token_used", "The authorization was already used: authorize again"},
    {"verifier_invalid", "The service did not accept the verifier of the authorization"},
    {"permission_denied", "The permission was denied"},
    {"permission_unknown", "The permission is still open"},
    {"user_refused", "The user refused the authorization"},
    {"additional_authorization_required", "The authorization does not cover this"},
    {"consumer_key_unknown", "The service does not know this application's key"},
    {"consumer_key_rejected", "The service does not accept this application's key"},
    {"consumer_key_refused", "The service refuses this application for now"},
    {"timestamp_refused",
     "The service did not accept the time of the request: is the clock of this computer right?"},
    {"nonce_used", "The service has seen this request before"},
    {"version_rejected", "The service does not accept this version of OAuth"},
    {"parameter_absent", "The request lacked a parameter"},
    {"parameter_rejected", "The service did not accept a parameter of the request"},
};

constexpr Words Entities[] = {{"&lt;", "<"},
                              {"&gt;", ">"},
                              {"&quot;", "\""},
                              {"&#39;", "'"},
                              {"&apos;", "'"},
                              {"&nbsp;", " "},
                              {"&mdash;", "\xE2\x80\x94"},
                              {"&ndash;", "\xE2\x80\x93"},
                              {"&amp;", "&"}}; // last, or "&amp;lt;" would be unfolded twice

// Only letters, digits and "_" of a service's word are put into our own sentences.
std::string PlainWord(std::string_view text)
{
    std::string result;
    for (const char c : text.substr(0, 80))
    {
        const bool isPlain = (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_';
        result += isPlain ? c : ' ';
    }
    return result;
}

// "oauth_problem=token_rejected&...": the rest, which may hold tokens, is left out.
std::string DescribeOAuthProblem(std::string_view body)
{
    std::string problem;
    std::string absent;
    for (const Parameter &parameter : ParseForm(body.substr(body.find("oauth_problem="))))
    {
        if (parameter.name == "oauth_problem" && problem.empty())
        {
            const std::string_view value = parameter.value.View();
            problem = PlainWord(value.substr(0, value.find_first_of(" \r\n\t,;\"")));
        }
        else if (parameter.name == "oauth_parameters_absent")
        {
            absent = PlainWord(parameter.value.View());
        }
    }
    const auto *const known = std::ranges::find(OAuthProblems, problem, &Words::first);
    const std::string_view text =
        known != std::end(OAuthProblems) ? known->second : "The service refused the request";
    return std::string(text) + (absent.empty() ? "" : ": " + absent) + " (" + problem + ")";
}

std::string WithoutTags(std::string_view html)
{
    std::string text;
    bool inTag = false;
    for (const char c : html)
    {
        inTag = c == '<' || (inTag && c != '>');
        if (!inTag)
        {
            text += c == '>' ? ' ' : c;
        }
    }
    for (const Words &entity : Entities)
    {
        for (size_t at; (at = text.find(entity.first)) != std::string::npos;)
        {
            text.replace(at, entity.first.size(), entity.second == "&" ? "\x01" : entity.second);
        }
    }
    std::replace(text.begin(), text.end(), '\x01', '&');
    return text;
}

// The text between <name ...> and </name>; empty if there is none.
std::string ElementText(std::string_view html, const std::string &lower, const std::string &name)
{
    const size_t open = lower.find("<" + name);
    const size_t start = open == std::string::npos ? open : lower.find('>', open);
    const size_t end = start == std::string::npos ? start : lower.find("</" + name, start);
    return end == std::string::npos ? std::string() : WithoutTags(html.substr(start + 1, end - start - 1));
}

bool IsBinary(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](unsigned char c) {
        return (c < ' ' && c != '\t' && c != '\r' && c != '\n' && c != '\f') || c == 0x7F;
    });
}

std::string Describe(std::string_view body)
{
    if (body.find("oauth_problem=") != std::string_view::npos)
    {
        return DescribeOAuthProblem(body);
    }
    if (body.starts_with("\xEF\xBB\xBF"))
    {
        body.remove_prefix(3);
    }
    body = Trimmed(body);
    if (body.empty() || IsBinary(body))
    {
        return {};
    }
    if (body.front() != '<')
    {
        return std::string(body);
    }
    const std::string lower = LowerAscii(body);
    const std::string title = ElementText(body, lower, "title");
    return Trimmed(title).empty() ? ElementText(body, lower, "h1") : title;
}
} // namespace

std::string WithoutSecrets(std::string text, SecretViews secrets)
{
    // The longest first: it may hold another one, without which the rest of it would not be found.
    std::sort(secrets.begin(), secrets.end(),
              [](std::string_view a, std::string_view b) { return a.size() > b.size(); });
    for (const std::string_view secret : secrets)
    {
        if (Trimmed(secret).empty())
        {
            continue;
        }
        for (size_t at = 0; (at = text.find(secret, at)) != text.npos; ++at)
        {
            text.replace(at, secret.size(), 1, ' ');
        }
    }
    return text;
}

std::string ShownLine(std::string_view text, const SecretViews &secrets, std::size_t longest)
{
    WideText line;
    for (const WCHAR c : FromUtf8(WithoutSecrets(std::string(text), secrets)))
    {
        if (c != ' ' && !IsCommand(c))
        {
            line.push_back(c);
        }
        else if (!line.empty() && line.back() != ' ')
        {
            line.push_back(' ');
        }
    }
    if (line.size() > longest)
    {
        const bool cutsPair = (line[longest - 1] & 0xFC00) == 0xD800;
        line.resize(longest - (cutsPair ? 1 : 0));
        line += TEXT("...");
    }
    while (!line.empty() && line.back() == ' ')
    {
        line.pop_back();
    }
    return ToUtf8(line);
}

std::string DescribeErrorBody(std::string_view body, const SecretViews &secrets)
{
    // Secrets are taken out before anything is cut: a part of one would not be found.
    return ShownLine(Describe(WithoutSecrets(std::string(body), secrets).substr(0, 16 * 1024)), secrets);
}

std::string_view StandardStatusWords(int status)
{
    static constexpr std::pair<int, std::string_view> Names[] = {{200, "OK"},
                                                                 {301, "Moved Permanently"},
                                                                 {302, "Found"},
                                                                 {303, "See Other"},
                                                                 {304, "Not Modified"},
                                                                 {307, "Temporary Redirect"},
                                                                 {308, "Permanent Redirect"},
                                                                 {400, "Bad Request"},
                                                                 {401, "Unauthorized"},
                                                                 {403, "Forbidden"},
                                                                 {404, "Not Found"},
                                                                 {405, "Method Not Allowed"},
                                                                 {408, "Request Timeout"},
                                                                 {411, "Length Required"},
                                                                 {413, "Content Too Large"},
                                                                 {415, "Unsupported Media Type"},
                                                                 {429, "Too Many Requests"},
                                                                 {500, "Internal Server Error"},
                                                                 {501, "Not Implemented"},
                                                                 {502, "Bad Gateway"},
                                                                 {503, "Service Unavailable"},
                                                                 {504, "Gateway Timeout"}};
    const auto *const found = std::ranges::find(Names, status, &std::pair<int, std::string_view>::first);
    return found != std::end(Names) ? found->second : std::string_view();
}
