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
    // The initial text of the name field, and the user's full name beside it.
    std::string userName;
    std::string fullName;
    // The host of the page that the browser opens after a grant.
    std::string callbackHost;
    std::int64_t secondsLeft = 0;
    // The service has no account with the name in the field.
    bool isUserUnknown = false;
};

std::string ConsentQuestionPage(const ConsentQuestion &question);

// Heading and text are plain text, not HTML.
std::string ConsentOutcomePage(std::string_view heading, std::string_view text);

} // namespace loopback
