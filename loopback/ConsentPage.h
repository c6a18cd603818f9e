// The pages that ask the user whether an application may use the account, and that show the outcome.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace loopback
{

struct ConsentQuestion
{
    // The name of the application that asks.
    std::string application;
    // "read", "write" or "delete"
    std::string permission;
    std::string token;
    // A hidden field; an answer without it is ignored.
    std::string formKey;
    // The initial text of the name field, and the user's full name beside it.
    std::string userName;
    std::string fullName;
    // The host of the page that the browser opens after a grant; empty if a code is shown instead.
    std::string callbackHost;
    std::int64_t secondsLeft = 0;
    // A message to show at the top of the page, or empty.
    std::string notice;
    // The service has no account with the name in the field.
    bool isUserUnknown = false;
};

std::string ConsentQuestionPage(const ConsentQuestion &question);

// Heading and text are plain text, not HTML.
std::string ConsentOutcomePage(std::string_view heading, std::string_view text);

// For an application that can't be called back: the user types this code there.
std::string ConsentCodePage(const std::string &application, const std::string &code);

} // namespace loopback
