#include "host/SystemWords.h"

#include "host/TextEncodings.h"

#include "com/HandleOwner.h"

#include <cstdio>

std::string CodeText(HRESULT code)
{
    char number[16];
    std::snprintf(number, sizeof(number), "0x%08x", static_cast<unsigned>(code));
    return number;
}

std::string SystemWordsOrNone(HRESULT code)
{
    LocalTextOwner message;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                       FORMAT_MESSAGE_MAX_WIDTH_MASK,
                   nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<LPWSTR>(message.Put()), 0, nullptr);
    return message ? Utf8FromText(WithoutPadding(message.Get())) : std::string();
}

std::string SystemWords(HRESULT code)
{
    const std::string words = SystemWordsOrNone(code);
    return words.empty() ? "error " + CodeText(code) : words;
}
