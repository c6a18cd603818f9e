// The account data that the plug-in keeps in the host's stream, for the host's own reading and for
// accounts set by hand. Little-endian: a byte 1, six texts, and 8 bytes of the largest file's size. A
// text is a 32-bit count of bytes and then that many bytes of UTF-16 with its closing zero, or the
// count 0 alone for a text that was never set.
#pragma once

#include "com/WideText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct AccountData
{
    std::optional<WideText> token;
    std::optional<WideText> tokenSecret;
    std::optional<WideText> userName;
    std::optional<WideText> fullName;
    std::optional<WideText> photosUrl;
    std::optional<WideText> accountType;
    int64_t maxFileSize = 0; // bytes

    bool IsAuthorized() const;
};

// Nothing if the bytes aren't exactly what ComposeInitData writes: cut off, a text that isn't closed,
// bytes left over, another marker. No bytes at all are an account that was never set.
std::optional<AccountData> ParseInitData(std::string_view bytes);

std::string ComposeInitData(const AccountData &account);

// The host's own file around the stream's content: "HVRA", length and CRC-32 of the content, and the content.
// The length and the sum tell damage that the content alone doesn't show, such as a changed letter of the token.
std::string ComposeInitDataFile(std::string_view content);

// The content of the file, or nothing if it is damaged. Earlier versions wrote the content alone.
std::optional<std::string> ParseInitDataFile(std::string_view file);
