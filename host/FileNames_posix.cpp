// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "host/FileNames.h"

#include "host/SafeLine.h"

WideText TextOfPath(const std::filesystem::path &path)
{
    const std::string &bytes = path.native();
    const auto length = static_cast<int32_t>(bytes.size());
    WideText text;
    text.reserve(bytes.size());
    for (int32_t next = 0; next < length;)
    {
        const int32_t start = next;
        UChar32 character;
        U8_NEXT(bytes.data(), next, length, character);
        if (character >= 0)
        {
            WCHAR units[2];
            int32_t count = 0;
            U16_APPEND_UNSAFE(units, count, character);
            text.append(units, static_cast<size_t>(count));
            continue;
        }
        for (int32_t i = start; i < next; ++i)
        {
            text += static_cast<WCHAR>(0xDC00 + static_cast<unsigned char>(bytes[static_cast<size_t>(i)]));
        }
    }
    return text;
}

std::filesystem::path PathOfText(WideView text)
{
    std::string bytes;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t next = 0; next < length;)
    {
        UChar32 character;
        U16_NEXT(text.data(), next, length, character);
        if (character >= 0xDC80 && character <= 0xDCFF)
        {
            bytes += static_cast<char>(character - 0xDC00);
            continue;
        }
        char sequence[U8_MAX_LENGTH];
        int32_t count = 0;
        U8_APPEND_UNSAFE(sequence, count, U_IS_SURROGATE(character) ? 0xFFFD : character);
        bytes.append(sequence, static_cast<size_t>(count));
    }
    return std::filesystem::path(bytes);
}

std::string ShownPath(const std::filesystem::path &path)
{
    return OneSafeLine(path.native());
}

std::string NameBytes(const std::filesystem::path &path)
{
    return path.native();
}

std::filesystem::path PathOfNameBytes(const std::string &bytes)
{
    return bytes;
}

std::filesystem::path IdentityOf(const std::filesystem::path &file)
{
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(file, error);
    const std::filesystem::path folder = std::filesystem::canonical(whole.parent_path(), error);
    return (error ? whole.parent_path() : folder) / whole.filename();
}

bool IsHidden(const std::filesystem::path &entry)
{
    return entry.filename().native().starts_with('.');
}
