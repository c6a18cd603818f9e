#include "webclient/Utf8.h"

#include "com/TextConversion.h"

std::string Utf8FromWide(WideView text)
{
    return ToUtf8(text);
}

SecretText SecretUtf8FromWide(WideView text)
{
    SecretText result;
    while (!text.empty())
    {
        const char32_t character = TakeUtf16(text);
        AppendUtf8(IsSurrogate(character) ? ReplacementCharacter : character,
                   [&](char byte) { result.Append(byte); });
    }
    return result;
}

WideText WideFromUtf8(std::string_view bytes)
{
    return FromUtf8(bytes);
}

SecretWideText SecretWideFromUtf8(std::string_view bytes)
{
    SecretWideText result;
    while (!bytes.empty())
    {
        const char32_t character = TakeUtf8(bytes);
        AppendUtf16(result, character == MalformedUtf8 ? ReplacementCharacter : character);
    }
    return result;
}
