// What all pages share: the HTML document around them, the colours for light and dark mode, and the escaping
// of what clients sent, in HTML and in XML. Pages use no script and load nothing from other hosts.
#pragma once

#include "loopback/HttpMessages.h"

#include <string>
#include <string_view>

namespace loopback
{

// Bytes that aren't UTF-8 become U+FFFD, and control characters, which XML doesn't allow, "?".
std::string EscapeMarkup(std::string_view text);

struct PageParts
{
    // Plain text, not HTML.
    std::string title;
    // CSS; the colours are --page, --card, --ink, --soft, --line, --accent, --pink, --chip, --shade.
    std::string style;
    // HTML.
    std::string header;
    std::string main;
};

std::string PageFrame(const PageParts &parts);

// The page, with headers that forbid it to run scripts, to load anything, to send a referrer and to be
// framed. `formTargets` are the sources (in the terms of CSP) to which its forms may lead, also by redirects.
HttpReply PageReply(int status, std::string html, const std::string &formTargets = "'none'");

} // namespace loopback
