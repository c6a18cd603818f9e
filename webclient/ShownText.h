// Makes text from the wire fit to be shown and logged. Every such text passes through here, the status words of
// an answer and the service's own messages too: a server can repeat what it was sent, secrets included.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

using SecretViews = std::vector<std::string_view>; // UTF-8; blank ones are passed over

// One line of UTF-8 without secrets, commands to a terminal (IsCommand in com/SafeText.h) and repeated
// blanks. Text beyond longest characters is cut off, and "..." put in its place.
std::string ShownLine(std::string_view text, const SecretViews &secrets, std::size_t longest = 200);

// Describes the body of a refusal, bytes as they came, in a shown line: an OAuth problem in plain words, the title of
// a page, or the first words of a plain text. Empty if the body holds nothing readable.
std::string DescribeErrorBody(std::string_view body, const SecretViews &secrets);

// "Service Unavailable" for 503; empty for a status without a name.
std::string_view StandardStatusWords(int status);
