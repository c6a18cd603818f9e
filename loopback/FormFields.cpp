#include "loopback/FormFields.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace loopback
{

std::string PercentEncode(std::string_view bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes)
    {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x80 && std::isalnum(byte)) || std::string_view("-._~").find(c) != std::string_view::npos)
        {
            text += c;
        }
        else
        {
            text += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return text;
}

std::string PercentDecode(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        unsigned value = 0;
        if (text[i] == '%' && i + 2 < text.size() && text[i + 1] != '-' &&
            std::from_chars(&text[i + 1], &text[i + 1] + 2, value, 16).ptr == &text[i + 1] + 2)
        {
            bytes += static_cast<char>(value);
            i += 2;
        }
        else
        {
            bytes += text[i];
        }
    }
    return bytes;
}

FormFields ParseForm(std::string_view text)
{
    FormFields fields;
    while (!text.empty())
    {
        const auto end = std::min(text.find('&'), text.size());
        std::string pair(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (pair.empty())
        {
            continue;
        }
        std::replace(pair.begin(), pair.end(), '+', ' ');
        const auto equals = std::min(pair.find('='), pair.size());
        fields.emplace_back(PercentDecode(std::string_view(pair).substr(0, equals)),
                            equals == pair.size() ? std::string()
                                                  : PercentDecode(std::string_view(pair).substr(equals + 1)));
    }
    return fields;
}

std::optional<std::string> FindField(const FormFields &fields, std::string_view name)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const auto &field) { return field.first == name; });
    return found == fields.end() ? std::nullopt : std::optional(found->second);
}

std::optional<long long> ParseWholeNumber(std::string_view text)
{
    long long value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
    {
        return std::nullopt;
    }
    return value;
}

} // namespace loopback
