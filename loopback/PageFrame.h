// What all pages have in common: the document around them, the colours in light and dark, and the
// escaping of whatever came from outside. Pages need no script and fetch nothing from elsewhere.
#pragma once

#include "loopback/HttpMessages.h"

#include <string>
#include <string_view>

namespace loopback
{

std::string EscapeHtml(std::string_view text);

struct PageParts
{
    // Plain text.
    std::string title;
    // CSS; the colours are --page, --card, --ink, --soft, --line, --accent, --pink, --chip, --shade.
    std::string_view style;
    // HTML.
    std::string header;
    std::string main;
};

std::string PageFrame(const PageParts &parts);

// The page with the headers that keep it from running, loading or telling anything, and from being
// framed. A form in it may lead to these sources (CSP's words), by redirects too.
HttpReply PageReply(int status, std::string html, const std::string &formTargets = "'none'");

} // namespace loopback
