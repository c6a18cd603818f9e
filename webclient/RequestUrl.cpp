#include "webclient/RequestUrl.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"
#include "webclient/PercentEncoding.h"

#include <algorithm>
#include <charconv>

namespace
{
// ERROR_INTERNET_INVALID_URL, which is ERROR_WINHTTP_INVALID_URL too.
constexpr HRESULT InvalidUrl = static_cast<HRESULT>(0x80072EE5);

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

ParameterList ParseForm(std::string_view encoded)
{
    ParameterList result;
    while (!encoded.empty())
    {
        const size_t end = std::min(encoded.find('&'), encoded.size());
        const std::string_view pair = encoded.substr(0, end);
        encoded.remove_prefix(std::min(end + 1, encoded.size()));
        if (!pair.empty())
        {
            const size_t equals = std::min(pair.find('='), pair.size());
            result.push_back({std::string(FormDecode(pair.substr(0, equals)).View()),
                              FormDecode(pair.substr(std::min(equals + 1, pair.size())))});
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
    const size_t question = std::min(text.find('?'), text.size());
    url.path = text.substr(0, question);
    url.query = text.substr(std::min(question + 1, text.size()));
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
