#include "loopback/ConsentPage.h"

#include "loopback/PageFrame.h"

#include <fmt/format.h>

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char Style[] = R"(
header{padding:1.1rem 1.25rem;text-align:center}
.brand{margin:0;font-weight:700;font-size:1.15rem;letter-spacing:-.02em}.brand i{font-style:normal;color:var(--pink)}
main{max-width:35rem;margin:0 auto;padding:0 1rem 3rem}
.sheet{background:var(--card);border:1px solid var(--line);border-radius:14px;box-shadow:var(--shade);
padding:clamp(1.25rem,5vw,2.25rem)}
.who{display:flex;align-items:center;gap:.7rem;margin:0 0 1rem;color:var(--soft)}.who b{color:var(--ink)}
.badge{flex:none;width:2.6rem;height:2.6rem;border-radius:10px;display:grid;place-items:center;font-weight:700;
font-size:1.2rem;background:var(--accent);color:var(--card)}
h1{font-size:1.5rem;line-height:1.25;margin:0 0 1.2rem;letter-spacing:-.015em;overflow-wrap:anywhere;text-wrap:balance}
h2{font-size:.95rem;margin:1.1rem 0 .35rem}
.sheet ul{list-style:none;margin:0;padding:0}
.sheet li{position:relative;padding:.15rem 0 .15rem 1.7rem}
.sheet li::before{position:absolute;left:.15rem;font-weight:700}
.can li::before{content:"✓";color:var(--accent)}
.cannot li{color:var(--soft)}.cannot li::before{content:"–"}
form{margin:1.5rem 0 0;padding-top:1.3rem;border-top:1px solid var(--line)}
label{display:block;font-weight:600;margin-bottom:.3rem}
input{font:inherit;color:inherit;background:var(--page);width:100%;padding:.6rem .75rem;border:1px solid var(--soft);
border-radius:8px}
.hint{margin:.35rem 0 0;font-size:.88rem;color:var(--soft)}.wrong{color:var(--pink);font-weight:600}
.choice{display:flex;flex-wrap:wrap;gap:.7rem;margin-top:1.3rem}
button{font:inherit;font-weight:600;flex:1 1 9rem;min-height:2.9rem;border-radius:9px;cursor:pointer;
border:1px solid var(--soft);background:transparent;color:var(--ink)}
button.allow{background:var(--accent);border-color:var(--accent);color:var(--card)}
button:hover{filter:brightness(1.08)}
:focus-visible{outline:3px solid var(--pink);outline-offset:2px}
.after{margin:1.2rem 0 0;font-size:.88rem;color:var(--soft);overflow-wrap:anywhere}
.sheet>p:last-child{margin-bottom:0}
)";

constexpr char Brand[] = "<p class=\"brand\">flickr<i>-loopback</i></p>";

// HTML list items; each further permission, from read to delete, adds to them.
constexpr const char *MaySee = "<li>see all your photos, the private ones too</li>";
constexpr const char *MayWrite = "<li>upload photos and videos</li>"
                                 "<li>change titles, descriptions, tags and who may see a photo</li>";
constexpr const char *MayDelete = "<li>delete photos and videos</li>";
constexpr const char *NeverPassword = "<li>sign in as you, or change your account</li>";

std::string Question(const std::string &application, const std::string &permission)
{
    return "May " + application +
           (permission == "read"    ? " see your photos?"
            : permission == "write" ? " upload photos to your account?"
                                    : " upload and delete photos in your account?");
}

std::string TimeLeft(std::int64_t seconds)
{
    const std::int64_t minutes = (seconds + 30) / 60;
    return minutes >= 2 ? fmt::format("{} minutes", minutes) : minutes == 1 ? "a minute" : "less than a minute";
}

// The first character, which may have several bytes.
std::string Initial(const std::string &name)
{
    std::size_t end = std::min<std::size_t>(1, name.size());
    while (end < name.size() && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
    {
        ++end;
    }
    return name.substr(0, end);
}

std::string Hidden(const char *name, const std::string &value)
{
    return fmt::format("<input type=\"hidden\" name=\"{}\" value=\"{}\">", name, EscapeMarkup(value));
}

std::string FormHtml(const ConsentQuestion &question)
{
    const std::string hint = question.isUserUnknown
                                 ? "<p class=\"hint wrong\" id=\"user-hint\" role=\"alert\">There is no "
                                   "account of this name here.</p>"
                                 : "<p class=\"hint\" id=\"user-hint\">" + EscapeMarkup(question.fullName) +
                                       ". On this machine no password is asked for.</p>";
    return "<form method=\"post\" action=\"/services/oauth/authorize\">" + Hidden("oauth_token", question.token) +
           Hidden("perms", question.permission) +
           "<label for=\"user\">Your account</label><input id=\"user\" name=\"user\" value=\"" +
           EscapeMarkup(question.userName) +
           "\" autocomplete=\"username\" autocapitalize=\"none\" spellcheck=\"false\" maxlength=\"200\" "
           "required "
           "aria-describedby=\"user-hint\"" +
           (question.isUserUnknown ? " aria-invalid=\"true\" autofocus" : "") + ">" + hint +
           "<div class=\"choice\"><button class=\"allow\" name=\"decision\" value=\"allow\">Allow</button>"
           "<button name=\"decision\" value=\"deny\" formnovalidate>Deny</button></div></form>";
}

std::string Sheet(const std::string &html)
{
    return "<section class=\"sheet\" aria-labelledby=\"heading\">" + html + "</section>";
}

} // namespace

std::string ConsentQuestionPage(const ConsentQuestion &question)
{
    const std::string name = EscapeMarkup(question.application);
    const bool mayWrite = question.permission != "read";
    const bool mayDelete = question.permission == "delete";
    const std::string main =
        "<p class=\"who\"><span class=\"badge\" aria-hidden=\"true\">" +
        EscapeMarkup(Initial(question.application)) + "</span><span>The program <b>" + name +
        "</b> asks</span></p><h1 id=\"heading\" dir=\"auto\">" +
        EscapeMarkup(Question(question.application, question.permission)) + "</h1>" +
        "<h2>It will be able to</h2><ul class=\"can\">" + MaySee + (mayWrite ? MayWrite : "") +
        (mayDelete ? MayDelete : "") + "</ul><h2>It won’t be able to</h2><ul class=\"cannot\">" +
        (mayWrite ? "" : MayWrite) + (mayDelete ? "" : MayDelete) + NeverPassword + "</ul>" + FormHtml(question) +
        "<p class=\"after\">If you allow it, your browser goes on to <b>" + EscapeMarkup(question.callbackHost) +
        "</b>, which lets " + name + " know. You can answer for " + TimeLeft(question.secondsLeft) + ".</p>";
    return PageFrame({question.application + " asks for access", Style, Brand, Sheet(main)});
}

std::string ConsentOutcomePage(std::string_view heading, std::string_view text)
{
    return PageFrame(
        {std::string(heading), Style, Brand,
         Sheet("<h1 id=\"heading\">" + EscapeMarkup(heading) + "</h1><p>" + EscapeMarkup(text) + "</p>")});
}

} // namespace loopback
