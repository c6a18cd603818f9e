// Published vectors, and the corners of RFC 5849 in which signatures of others have failed.
#include "com/Hresult.h"
#include "webclient/OAuthSignature.h"
#include "webclient/RequestUrl.h"

#include <gmock/gmock.h>

#include <ctime>

namespace
{
using testing::HasSubstr;
using testing::Not;

Parameter P(std::string name, std::string_view value)
{
    return {std::move(name), SecretText(value)};
}

std::string BaseString(std::string_view method, std::string_view url, const ParameterList &parameters)
{
    return std::string(SignatureBaseString(method, RequestUrl::Parse(url), parameters).View());
}

TEST(OAuthSignature, BaseStringOfRfc5849Section341)
{
    EXPECT_EQ(BaseString("POST", "http://example.com/request?b5=%3D%253D&a3=a&c%40=&a2=r%20b",
                         {P("oauth_consumer_key", "9djdj82h48djs9d2"), P("oauth_token", "kkk9d7dh3k39sjv7"),
                          P("oauth_signature_method", "HMAC-SHA1"), P("oauth_timestamp", "137131201"),
                          P("oauth_nonce", "7d8f3e4a"), P("c2", ""), P("a3", "2 q")}),
              "POST&http%3A%2F%2Fexample.com%2Frequest&a2%3Dr%2520b%26a3%3D2%2520q%26a3%3Da%26b5%3D%253D%25253D%26"
              "c%2540%3D%26c2%3D%26oauth_consumer_key%3D9djdj82h48djs9d2%26oauth_nonce%3D7d8f3e4a%26"
              "oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%3D137131201%26oauth_token%3Dkkk9d7dh3k39sjv7");
}

struct SignedExample
{
    const char *method;
    const char *url;
    ParameterList parameters; // without key and method
    const char *key;
    const char *secret;
    const char *tokenSecret;
    const char *signature;
};

TEST(OAuthSignature, SignaturesOfPublishedExamples)
{
    const SignedExample examples[] = {
        // RFC 5849, section 1.2: temporary credentials, token, and a request with it.
        {"POST",
         "https://photos.example.net/initiate",
         {P("oauth_timestamp", "137131200"), P("oauth_nonce", "wIjqoS"),
          P("oauth_callback", "http://printer.example.com/ready")},
         "dpf43f3p2l4k3l03",
         "kd94hf93k423kf44",
         "",
         "74KNZJeDHnMBp0EMJ9ZHt/XKycU="},
        {"POST",
         "https://photos.example.net/token",
         {P("oauth_timestamp", "137131201"), P("oauth_nonce", "walatlh"), P("oauth_token", "hh5s93j4hdidpola"),
          P("oauth_verifier", "hfdp7dh39dks9884")},
         "dpf43f3p2l4k3l03",
         "kd94hf93k423kf44",
         "hdhd0244k9j7ao03",
         "gKgrFCywp7rO0OXSjdot/IHF7IU="},
        {"GET",
         "http://photos.example.net/photos?file=vacation.jpg&size=original",
         {P("oauth_timestamp", "137131202"), P("oauth_nonce", "chapoH"), P("oauth_token", "nnch734d00sl2jdk")},
         "dpf43f3p2l4k3l03",
         "kd94hf93k423kf44",
         "pfkkdhi9sl3r4s00",
         "MdpQcU8iPSUjWoN/UDMsK2sui9I="},
        // A well-known example of a form body beside a query.
        {"POST",
         "https://api.twitter.com/1.1/statuses/update.json?include_entities=true",
         {P("status", "Hello Ladies + Gentlemen, a signed OAuth request!"), P("oauth_version", "1.0"),
          P("oauth_timestamp", "1318622958"), P("oauth_nonce", "kYjzVBB8Y0ZFabxSWbWovY3uYSQ2pTgmZeNu2VS4cg"),
          P("oauth_token", "370773112-GmHxMAgYyLbNEtIKZeRNFsMKPR9EyMZeS9weJAEb")},
         "xvz1evFS4wEEPTGEFPHBog",
         "kAcSOqF21Fu85e7zjz7ZN2U4ZRhfV3WpwPAoE3Z7kBw",
         "LswwdoUaIvS8ltyTt5jkRh4J50vUPVVHtR2YPi5kE",
         "hCtSmYh+iHYCEqBWrE7C7hYmtUk="},
    };
    for (const SignedExample &example : examples)
    {
        ParameterList parameters = example.parameters;
        parameters.push_back(P("oauth_consumer_key", example.key));
        parameters.push_back(P("oauth_signature_method", "HMAC-SHA1"));
        const std::string base = BaseString(example.method, example.url, parameters);
        EXPECT_EQ(SignText(base, example.secret, example.tokenSecret), example.signature) << base;
    }
}

TEST(OAuthSignature, UrlIsNormalised)
{
    const std::pair<const char *, const char *> cases[] = {
        {"HTTP://EXAMPLE.COM:80/r%20v/X?id=123", "http://example.com/r%20v/X"},
        {"https://www.example.net:8080/?q=1", "https://www.example.net:8080/"},
        {"https://Example.com:443", "https://example.com/"},
        {"http://example.com:443/a", "http://example.com:443/a"},
        {"https://[::1]:8443/Path#part", "https://[::1]:8443/Path"},
    };
    for (const auto &[url, expected] : cases)
    {
        EXPECT_EQ(RequestUrl::Parse(url).BaseStringUri(), expected);
    }
}

TEST(OAuthSignature, ParametersAreSortedByEncodedBytes)
{
    // "~" is sent as it is and so comes behind letters; "!" becomes "%21" and comes ahead of digits.
    EXPECT_EQ(
        BaseString("POST", "https://h/p", {P("a~", "1"), P("ab", "1"), P("a!", "1"), P("a", "b"), P("a", "%")}),
        "POST&https%3A%2F%2Fh%2Fp&a%3D%2525%26a%3Db%26a%2521%3D1%26ab%3D1%26a~%3D1");
}

TEST(OAuthSignature, AuthorizationHoldsTheProtocolParametersOnly)
{
    const OAuthIdentity identity{SecretText("key"), SecretText("consumer-secret"), SecretText("tok/en"),
                                 SecretText("token-secret")};
    const auto url = RequestUrl::Parse("https://api.flickr.com/services/upload/");
    const SecretText header = ComposeAuthorization("POST", url, identity, {"n1", "17"}, {P("title", "T")}, {});
    const std::string text(header.View());
    EXPECT_TRUE(text.starts_with("OAuth oauth_consumer_key=\"key\", oauth_nonce=\"n1\"")) << text;
    EXPECT_THAT(text, HasSubstr("oauth_token=\"tok%2Fen\""));
    EXPECT_THAT(text, HasSubstr("oauth_timestamp=\"17\""));
    EXPECT_THAT(text, Not(HasSubstr("title")));
    EXPECT_THAT(text, Not(HasSubstr("-secret")));
    const std::string untitled(ComposeAuthorization("POST", url, identity, {"n1", "17"}, {}, {}).View());
    EXPECT_NE(text.substr(text.find("oauth_signature=")), untitled.substr(untitled.find("oauth_signature=")));
}

TEST(OAuthMoment, IsAnotherForEachRequest)
{
    const OAuthMoment first = OAuthMoment::Now();
    EXPECT_NE(first.nonce, OAuthMoment::Now().nonce);
    EXPECT_GE(first.nonce.size(), 16u);
    EXPECT_NEAR(static_cast<double>(std::stoll(first.timestamp)), static_cast<double>(std::time(nullptr)), 10);
}

TEST(Utf8, SecretsAreConvertedAsOtherTextsAre)
{
    const WCHAR text[] = {'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'y', 0xD83D, 0};
    EXPECT_EQ(SecretUtf8FromWide(text).View(), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80y\xEF\xBF\xBD");
    const SecretWideText wide = SecretWideFromUtf8("a\xC3\xA9\xE2\x82\x41\xF0\x9F\x98\x80");
    EXPECT_EQ(WideText(wide.begin(), wide.end()), (WideText{'a', 0xE9, 0xFFFD, 'A', 0xD83D, 0xDE00}));
}

TEST(RequestUrl, RefusesWhatIsNoPlainAddress)
{
    for (const char *bad :
         {"", "flickr.com/x", "ftp://h/", "https://", "https://u:p@h/", "https://h:0/", "https://h:65536/",
          "https://h:x/", "https://h:80x/", "https://h/a b", "https://h/\xC3\xA9", "https://h/\r\nX: y"})
    {
        EXPECT_THROW(RequestUrl::Parse(bad), HresultError) << bad;
    }
}

TEST(RequestUrl, IsUpgradedWithItsDefaultPort)
{
    for (const char *port : {":80", ":443", ""})
    {
        auto url = RequestUrl::Parse(std::string("http://www.flickr.com") + port + "/services?a=b");
        url.UpgradeToHttps();
        EXPECT_EQ(url.Text(), "https://www.flickr.com/services?a=b");
    }
}

TEST(Form, IsEncodedOnceAndDecodedAsItWas)
{
    const std::string text = "a b+c%&=\"\n\xE2\x82\xAC~";
    const std::string encoded = EncodeForm({P("k y", text), P("e", "")});
    EXPECT_EQ(encoded, "k%20y=a%20b%2Bc%25%26%3D%22%0A%E2%82%AC~&e=");
    const ParameterList decoded = ParseForm(encoded);
    ASSERT_EQ(decoded.size(), 2u);
    EXPECT_EQ(decoded[0].name, "k y");
    EXPECT_EQ(decoded[0].value.View(), text);
    EXPECT_EQ(FormDecode("a+b%2").View(), "a b%2");
    EXPECT_EQ(FormDecode("%zz").View(), "%zz");
}
} // namespace
