#include "webclient/PercentEncoding.h"

namespace
{
constexpr char Digits[] = "0123456789ABCDEF";

bool IsUnreserved(unsigned char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

int DigitValue(char c)
{
    if (c >= '0' && c <= '9')
    {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}
} // namespace

void AppendPercentEncoded(SecretText &text, std::string_view bytes)
{
    for (const unsigned char byte : bytes)
    {
        if (IsUnreserved(byte))
        {
            text.Append(static_cast<char>(byte));
        }
        else
        {
            const char encoded[] = {'%', Digits[byte >> 4], Digits[byte & 15]};
            text.Append({encoded, sizeof(encoded)});
        }
    }
}

std::string PercentEncode(std::string_view bytes)
{
    SecretText result;
    AppendPercentEncoded(result, bytes);
    return std::string(result.View());
}

SecretText FormDecode(std::string_view encoded)
{
    SecretText result;
    for (size_t i = 0; i < encoded.size(); ++i)
    {
        const bool hasDigits = encoded[i] == '%' && i + 2 < encoded.size();
        const int high = hasDigits ? DigitValue(encoded[i + 1]) : -1;
        const int low = hasDigits ? DigitValue(encoded[i + 2]) : -1;
        if (high >= 0 && low >= 0)
        {
            result.Append(static_cast<char>(high * 16 + low));
            i += 2;
        }
        else
        {
            result.Append(encoded[i] == '+' ? ' ' : encoded[i]);
        }
    }
    return result;
}
