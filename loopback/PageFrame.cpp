#include "loopback/PageFrame.h"

#include "com/Utf8.h"

#include <algorithm>

namespace loopback
{

namespace
{

constexpr char CommonStyle[] = R"(
:root{color-scheme:light dark;--page:#f6f5f2;--card:#fff;--ink:#1d1f23;--soft:#666b75;--line:#e2e0da;
--accent:#0b62c4;--pink:#d6106f;--chip:#eef1f5;--shade:0 1px 2px #0001,0 6px 20px #0000000d}
@media(prefers-color-scheme:dark){:root{--page:#15171a;--card:#1f2226;--ink:#eceef1;--soft:#9aa1ac;
--line:#30343a;--accent:#6fb1ff;--pink:#ff6db0;--chip:#2b3037;--shade:0 1px 2px #0006}}
*{box-sizing:border-box}
body{margin:0;background:var(--page);color:var(--ink);font:15px/1.5 system-ui,sans-serif}
a{color:var(--accent);text-decoration:none}a:hover{text-decoration:underline}
)";

struct Escape
{
    char character;
    const char *text;
};

constexpr Escape Escapes[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

} // namespace

std::string EscapeMarkup(std::string_view text)
{
    std::string escaped;
    for (const char c : RepairedUtf8(text))
    {
        const auto *found = std::ranges::find(Escapes, c, &Escape::character);
        const bool isControl = static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
        escaped += found != std::end(Escapes) ? found->text : std::string(1, isControl ? '?' : c);
    }
    return escaped;
}

std::string PageFrame(const PageParts &parts)
{
    return "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">"
           "<link rel=\"icon\" href=\"data:,\"><title>" +
           EscapeMarkup(parts.title) + "</title><style>" + CommonStyle + parts.style +
           "</style></head>\n<body><header>" + parts.header + "</header>\n<main>" + parts.main +
           "</main></body></html>\n";
}

HttpReply PageReply(int status, std::string html, const std::string &formTargets)
{
    HttpReply reply{status, "text/html; charset=utf-8", std::move(html)};
    // Not "no-referrer": with it a browser doesn't send us a form's origin either.
    reply.headers = {{"Content-Security-Policy", "default-src 'none'; img-src 'self'; style-src 'unsafe-inline'; "
                                                 "base-uri 'none'; frame-ancestors 'none'; form-action " +
                                                     formTargets},
                     {"X-Content-Type-Options", "nosniff"},
                     {"Referrer-Policy", "same-origin"},
                     {"Cache-Control", "no-store"}};
    return reply;
}

} // namespace loopback
