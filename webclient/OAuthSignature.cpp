#include "webclient/OAuthSignature.h"

#include "com/Hash.h"
#include "com/Hresult.h"
#include "webclient/RandomText.h"
#include "webclient/RequestUrl.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace
{
SecretText Encoded(std::string_view bytes)
{
    SecretText result;
    AppendPercentEncoded(result, bytes);
    return result;
}

std::string Base64(const Sha1Digest &digest)
{
    static constexpr char Letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string result;
    for (size_t i = 0; i < digest.size(); i += 3)
    {
        const size_t present = std::min<size_t>(3, digest.size() - i);
        unsigned bits = 0;
        for (size_t k = 0; k < 3; ++k)
        {
            bits = bits << 8 | (k < present ? digest[i + k] : 0);
        }
        for (size_t k = 0; k < 4; ++k)
        {
            result.push_back(k <= present ? Letters[bits >> (18 - 6 * k) & 63] : '=');
        }
    }
    return result;
}

ParameterList ProtocolParameters(const OAuthIdentity &identity, const OAuthMoment &moment,
                                 const ParameterList &further)
{
    ParameterList result = {{"oauth_consumer_key", identity.applicationKey},
                            {"oauth_nonce", SecretText(moment.nonce)},
                            {"oauth_signature_method", SecretText("HMAC-SHA1")},
                            {"oauth_timestamp", SecretText(moment.timestamp)},
                            {"oauth_version", SecretText("1.0")}};
    if (!identity.token.IsEmpty())
    {
        result.push_back({"oauth_token", identity.token});
    }
    result.insert(result.end(), further.begin(), further.end());
    return result;
}
} // namespace

OAuthMoment OAuthMoment::Now()
{
    using namespace std::chrono;
    const auto seconds = duration_cast<std::chrono::seconds>(system_clock::now().time_since_epoch());
    return {RandomHexText(4), std::to_string(seconds.count())};
}

SecretText SignatureBaseString(std::string_view method, const RequestUrl &url, const ParameterList &parameters)
{
    std::vector<std::pair<SecretText, SecretText>> pairs; // names and values, encoded
    for (const ParameterList &list : {ParseForm(url.query), parameters})
    {
        for (const Parameter &parameter : list)
        {
            pairs.emplace_back(Encoded(parameter.name), Encoded(parameter.value.View()));
        }
    }
    std::sort(pairs.begin(), pairs.end()); // RFC 5849, 3.4.1.3.2: by name, then by value, byte by byte

    SecretText normalized;
    for (const auto &[name, value] : pairs)
    {
        normalized.Append(normalized.IsEmpty() ? "" : "&");
        normalized.Append(name.View());
        normalized.Append('=');
        normalized.Append(value.View());
    }
    SecretText result{method};
    result.Append('&');
    AppendPercentEncoded(result, url.BaseStringUri());
    result.Append('&');
    AppendPercentEncoded(result, normalized.View());
    return result;
}

std::string SignText(std::string_view baseString, std::string_view applicationSecret, std::string_view tokenSecret)
{
    SecretText key;
    AppendPercentEncoded(key, applicationSecret);
    key.Append('&');
    AppendPercentEncoded(key, tokenSecret);
    const auto digest = HmacSha1(key.View(), baseString);
    if (!digest)
    {
        ThrowHresult(E_FAIL);
    }
    return Base64(*digest);
}

SecretText ComposeAuthorization(std::string_view method, const RequestUrl &url, const OAuthIdentity &identity,
                                const OAuthMoment &moment, const ParameterList &signedParameters,
                                const ParameterList &further)
{
    ParameterList protocol = ProtocolParameters(identity, moment, further);
    ParameterList all = protocol;
    all.insert(all.end(), signedParameters.begin(), signedParameters.end());
    const SecretText baseString = SignatureBaseString(method, url, all);
    protocol.push_back(
        {"oauth_signature",
         SecretText(SignText(baseString.View(), identity.applicationSecret.View(), identity.tokenSecret.View()))});
    SecretText result{"OAuth "};
    for (const Parameter &parameter : protocol)
    {
        result.Append(&parameter == &protocol.front() ? "" : ", ");
        result.Append(parameter.name);
        result.Append("=\"");
        AppendPercentEncoded(result, parameter.value.View());
        result.Append('"');
    }
    return result;
}
