#include "webclient/RequestUrl.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"

#include <algorithm>
#include <charconv>

namespace
{
constexpr char Digits[] = "0123456789ABCDEF";

bool IsUnreserved(unsigned char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

// ERROR_INTERNET_INVALID_URL, which is ERROR_WINHTTP_INVALID_URL too.
constexpr HRESULT InvalidUrl = static_cast<HRESULT>(0x80072EE5);

// Takes what stands ahead of the mark, or all, off the text, and the mark itself.
std::string_view TakeUntil(std::string_view &text, char mark)
{
    const std::string_view part = text.substr(0, text.find(mark));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

unsigned DefaultPort(std::string_view scheme)
{
    return scheme == "https" ? 443 : 80;
}

// Splits "host", "host:port" and "[address]:port".
void ParseAuthority(std::string_view authority, RequestUrl &url)
{
    const size_t bracket = authority.rfind(']');
    const size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    url.host = LowerAscii(authority.substr(0, colon));
    if (colon != std::string_view::npos && colon + 1 < authority.size())
    {
        const char *end = authority.data() + authority.size();
        const auto parsed = std::from_chars(authority.data() + colon + 1, end, url.port);
        if (parsed.ec != std::errc() || parsed.ptr != end || url.port == 0 || url.port > 65535)
        {
            ThrowHresult(InvalidUrl);
        }
    }
    if (url.port == DefaultPort(url.scheme))
    {
        url.port = 0;
    }
    if (url.host.empty() || authority.find('@') != std::string_view::npos)
    {
        ThrowHresult(InvalidUrl);
    }
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
        const char *digits = encoded.data() + i + 1;
        unsigned value = 0;
        if (encoded[i] == '%' && i + 2 < encoded.size() &&
            std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2)
        {
            result.Append(static_cast<char>(value));
            i += 2;
        }
        else
        {
            result.Append(encoded[i] == '+' ? ' ' : encoded[i]);
        }
    }
    return result;
}

ParameterList ParseForm(std::string_view encoded)
{
    ParameterList result;
    while (!encoded.empty())
    {
        if (std::string_view value = TakeUntil(encoded, '&'); !value.empty())
        {
            const std::string_view name = TakeUntil(value, '=');
            result.push_back({std::string(FormDecode(name).View()), FormDecode(value)});
        }
    }
    return result;
}

std::string EncodeForm(const ParameterList &parameters)
{
    std::string result;
    for (const Parameter &parameter : parameters)
    {
        result.append(result.empty() ? "" : "&").append(PercentEncode(parameter.name)).append("=");
        result.append(PercentEncode(parameter.value.View()));
    }
    return result;
}

RequestUrl RequestUrl::Parse(std::string_view text)
{
    if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c <= ' ' || c >= 0x7F; }))
    {
        ThrowHresult(InvalidUrl);
    }
    text = text.substr(0, text.find('#'));
    const size_t separator = text.find("://");
    if (separator == std::string_view::npos)
    {
        ThrowHresult(InvalidUrl);
    }
    RequestUrl url;
    url.scheme = LowerAscii(text.substr(0, separator));
    if (url.scheme != "http" && url.scheme != "https")
    {
        ThrowHresult(InvalidUrl);
    }
    text.remove_prefix(separator + 3);
    const size_t authorityEnd = std::min(text.find_first_of("/?"), text.size());
    ParseAuthority(text.substr(0, authorityEnd), url);
    text.remove_prefix(authorityEnd);
    url.path = TakeUntil(text, '?');
    url.query = text;
    if (url.path.empty())
    {
        url.path.assign(1, '/');
    }
    return url;
}

std::string RequestUrl::BaseStringUri() const
{
    std::string uri = scheme + "://" + host;
    if (port != 0)
    {
        uri.append(1, ':').append(std::to_string(port));
    }
    return uri + path;
}

std::string RequestUrl::Text() const
{
    return BaseStringUri() + (query.empty() ? "" : "?" + query);
}

void RequestUrl::AddQuery(const ParameterList &parameters)
{
    const std::string added = EncodeForm(parameters);
    query += (query.empty() || added.empty() ? "" : "&") + added;
}

void RequestUrl::UpgradeToHttps()
{
    if (scheme == "http")
    {
        scheme = "https";
        port = port == 443 ? 0 : port;
    }
}
