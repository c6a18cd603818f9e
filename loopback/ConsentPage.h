// The pages on which a user is asked whether an application may use the account, and told what
// came of it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace loopback
{

struct ConsentQuestion
{
    // Who asks.
    std::string application;
    // "read", "write" or "delete"
    std::string permission;
    std::string token;
    // Comes back with the answer, or the answer doesn't count.
    std::string formKey;
    // What stands in the field, and the user's full name beside it.
    std::string userName;
    std::string fullName;
    // Where the browser goes after a grant; empty when a code is shown instead.
    std::string callbackHost;
    std::int64_t secondsLeft = 0;
    // Something about the page itself that must be said first, or empty.
    std::string notice;
    // The name in the field is no account here.
    bool isUserUnknown = false;
};

std::string ConsentQuestionPage(const ConsentQuestion &question);

// Heading and text are plain text.
std::string ConsentOutcomePage(std::string_view heading, std::string_view text);

// For an application that can't be called back: the user types this code there.
std::string ConsentCodePage(const std::string &application, const std::string &code);

} // namespace loopback
