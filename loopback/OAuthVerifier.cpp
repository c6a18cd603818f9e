#include "loopback/OAuthVerifier.h"

#include "com/AsciiText.h"
#include "loopback/Secrets.h"

#include <algorithm>
#include <array>
#include <set>

namespace loopback
{

namespace
{

constexpr std::int64_t TimestampWindow = 600;
constexpr std::string_view Scheme = "OAuth ";

bool IsOAuthScheme(std::string_view header)
{
    return EqualsIgnoringCase(header.substr(0, Scheme.size()), Scheme);
}

// RFC 5849, 3.5.1. The realm is not a signed parameter (3.4.1.3.1).
FormFields ParseAuthorization(std::string_view header)
{
    FormFields fields;
    if (!IsOAuthScheme(header))
    {
        return fields;
    }
    header.remove_prefix(Scheme.size());
    while (!header.empty())
    {
        const auto comma = std::min(header.find(','), header.size());
        const auto entry = Trimmed(header.substr(0, comma));
        header.remove_prefix(std::min(comma + 1, header.size()));
        const auto equals = entry.find('=');
        if (equals == std::string_view::npos)
        {
            continue;
        }
        const auto name = Trimmed(entry.substr(0, equals));
        auto value = Trimmed(entry.substr(equals + 1));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        {
            value = value.substr(1, value.size() - 2);
        }
        if (name != "realm")
        {
            fields.emplace_back(PercentDecode(name), PercentDecode(value));
        }
    }
    return fields;
}

OAuthOutcome Refused(std::string problem)
{
    return {.problem = "oauth_problem=" + std::move(problem)};
}

// The names of the missing required parameters, joined by an encoded "&" as the real service does.
std::string AbsentNames(const FormFields &parameters)
{
    constexpr std::array required = {"oauth_consumer_key", "oauth_signature_method", "oauth_signature",
                                     "oauth_timestamp", "oauth_nonce"};
    std::string absent;
    for (const auto *name : required)
    {
        if (FindField(parameters, name).value_or("").empty())
        {
            absent += (absent.empty() ? "" : "%26") + std::string(name);
        }
    }
    return absent;
}

// The first oauth_ parameter that occurs twice.
std::string RepeatedName(const FormFields &parameters)
{
    std::set<std::string> seen;
    for (const auto &[name, value] : parameters)
    {
        if (name.starts_with("oauth_") && !seen.insert(name).second)
        {
            return name;
        }
    }
    return {};
}

} // namespace

std::string SignatureBase(const std::string &method, const std::string &url, const FormFields &parameters)
{
    FormFields encoded;
    for (const auto &[name, value] : parameters)
    {
        if (name != "oauth_signature")
        {
            encoded.emplace_back(PercentEncode(name), PercentEncode(value));
        }
    }
    std::sort(encoded.begin(), encoded.end());
    std::string normalized;
    for (const auto &[name, value] : encoded)
    {
        normalized += (normalized.empty() ? "" : "&") + name + "=" + value;
    }
    return method + "&" + PercentEncode(url) + "&" + PercentEncode(normalized);
}

OAuthVerifier::OAuthVerifier(Consumer consumer, SecretLookup tokenSecret, Clock clock)
    : m_consumer(std::move(consumer)), m_tokenSecret(std::move(tokenSecret)), m_clock(std::move(clock))
{
}

OAuthOutcome OAuthVerifier::Check(const HttpRequest &request, const FormFields &fields)
{
    FormFields parameters = ParseAuthorization(request.Header("authorization"));
    const FormFields query = ParseForm(request.Query());
    parameters.insert(parameters.end(), query.begin(), query.end());
    parameters.insert(parameters.end(), fields.begin(), fields.end());
    const auto value = [&](const char *name) { return FindField(parameters, name).value_or(""); };

    if (std::none_of(parameters.begin(), parameters.end(),
                     [](const auto &parameter) { return parameter.first.starts_with("oauth_"); }))
    {
        return {.isUnsigned = true,
                .problem = "oauth_problem=parameter_absent&oauth_parameters_absent=" + AbsentNames(parameters)};
    }
    if (FindField(parameters, "oauth_version").value_or("1.0") != "1.0")
    {
        return Refused("version_rejected&oauth_acceptable_versions=1.0-1.0");
    }
    if (const auto absent = AbsentNames(parameters); !absent.empty())
    {
        return Refused("parameter_absent&oauth_parameters_absent=" + absent);
    }
    if (const auto repeated = RepeatedName(parameters); !repeated.empty())
    {
        return Refused("parameter_rejected&oauth_parameters_rejected=" + repeated);
    }
    if (value("oauth_signature_method") != "HMAC-SHA1")
    {
        return Refused("signature_method_rejected");
    }
    if (value("oauth_consumer_key") != m_consumer.key)
    {
        return Refused("consumer_key_unknown");
    }
    const auto timestamp = ParseWholeNumber(value("oauth_timestamp"));
    const std::int64_t now = m_clock();
    if (!timestamp || *timestamp < now - TimestampWindow || *timestamp > now + TimestampWindow)
    {
        return Refused("timestamp_refused&oauth_acceptable_timestamps=" + std::to_string(now - TimestampWindow) +
                       "-" + std::to_string(now + TimestampWindow));
    }
    const std::string token = value("oauth_token");
    const auto tokenSecret = token.empty() ? std::optional(std::string()) : m_tokenSecret(token);
    if (!tokenSecret)
    {
        return Refused("token_rejected");
    }

    const std::string url = (request.secure ? "https://" : "http://") + request.host + request.Path();
    const std::string base = SignatureBase(request.method, url, parameters);
    const std::string key = PercentEncode(m_consumer.secret) + "&" + PercentEncode(*tokenSecret);
    if (!EqualSecretly(HmacSha1(key, base), value("oauth_signature")))
    {
        return Refused("signature_invalid&debug_sbs=" + base);
    }
    // Only now: a forged request must not use up the nonce.
    if (!UseNonce(value("oauth_timestamp") + " " + token + " " + value("oauth_nonce"), now))
    {
        return Refused("nonce_used");
    }
    return {.accepted = true, .token = token, .parameters = std::move(parameters)};
}

bool OAuthVerifier::UseNonce(const std::string &nonce, std::int64_t now)
{
    const std::lock_guard lock(m_mutex);
    // A timestamp may lie a window ahead, so its nonce counts for two windows.
    std::erase_if(m_nonces, [&](const auto &used) { return used.second < now - 2 * TimestampWindow; });
    return m_nonces.emplace(nonce, now).second;
}

} // namespace loopback
