#include "loopback/OAuthVerifier.h"

#include "LoopbackClient.h"

#include <gmock/gmock.h>

using loopback::OAuthVerifier;
using loopback::SignedRequest;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

std::int64_t g_now = 0;

OAuthVerifier ExampleVerifier()
{
    return OAuthVerifier(
        [](const std::string &key) {
            return key == "dpf43f3p2l4k3l03" ? std::optional<std::string>("kd94hf93k423kf44") : std::nullopt;
        },
        [](const std::string &token) {
            return token == "nnch734d00sl2jdk" ? std::optional<std::string>("pfkkdhi9sl3r4s00") : std::nullopt;
        },
        [] { return g_now; });
}

// The authenticated request of RFC 5849, section 1.2.
SignedRequest ExampleRequest()
{
    return {"GET",
            "http://photos.example.net/photos",
            "OAuth realm=\"Photos\",\r\n oauth_consumer_key=\"dpf43f3p2l4k3l03\",\r\n"
            " oauth_token=\"nnch734d00sl2jdk\", oauth_signature_method=\"HMAC-SHA1\",\r\n"
            " oauth_timestamp=\"137131202\", oauth_nonce=\"chapoH\",\r\n"
            " oauth_signature=\"MdpQcU8iPSUjWoN%2FUDMsK2sui9I%3D\"",
            {{"file", "vacation.jpg"}, {"size", "original"}}};
}

} // namespace

TEST(OAuthVerifier, MakesTheSignatureBaseOfTheStandard)
{
    EXPECT_EQ(loopback::SignatureBase("POST", "http://example.com/request",
                                      {{"b5", "=%3D"},
                                       {"a3", "a"},
                                       {"c@", ""},
                                       {"a2", "r b"},
                                       {"c2", ""},
                                       {"a3", "2 q"},
                                       {"oauth_consumer_key", "9djdj82h48djs9d2"},
                                       {"oauth_token", "kkk9d7dh3k39sjv7"},
                                       {"oauth_signature_method", "HMAC-SHA1"},
                                       {"oauth_timestamp", "137131201"},
                                       {"oauth_nonce", "7d8f3e4a"},
                                       {"oauth_signature", "ignored"}}),
              "POST&http%3A%2F%2Fexample.com%2Frequest&a2%3Dr%2520b%26a3%3D2%2520q%26a3%3Da%26b5%3D%253D%25253D"
              "%26c%2540%3D%26c2%3D%26oauth_consumer_key%3D9djdj82h48djs9d2%26oauth_nonce%3D7d8f3e4a"
              "%26oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%3D137131201"
              "%26oauth_token%3Dkkk9d7dh3k39sjv7");
}

TEST(OAuthVerifier, AcceptsThePublishedRequestOnceAndInItsTime)
{
    auto verifier = ExampleVerifier();
    g_now = 137131202;
    const auto first = verifier.Check(ExampleRequest());
    EXPECT_TRUE(first.accepted) << first.problem;
    EXPECT_EQ(first.token, "nnch734d00sl2jdk");
    EXPECT_EQ(verifier.Check(ExampleRequest()).problem, "oauth_problem=nonce_used");
    for (const std::int64_t offset : {-601, 601})
    {
        g_now = 137131202 + offset;
        EXPECT_THAT(verifier.Check(ExampleRequest()).problem, StartsWith("oauth_problem=timestamp_refused"));
    }
    // Forgetting old nonces must not open the window again.
    g_now = 137131202 + 600;
    EXPECT_EQ(verifier.Check(ExampleRequest()).problem, "oauth_problem=nonce_used");
}

TEST(OAuthVerifier, AForgedRequestDoesNotUseUpTheNonce)
{
    auto verifier = ExampleVerifier();
    g_now = 137131202;
    SignedRequest forged = ExampleRequest();
    forged.parameters[0].second = "another.jpg";
    EXPECT_THAT(verifier.Check(forged).problem, StartsWith("oauth_problem=signature_invalid&debug_sbs=GET&http"));
    EXPECT_TRUE(verifier.Check(ExampleRequest()).accepted);
}

TEST(OAuthVerifier, TheServiceRefusesEachSpoiltPieceByItsName)
{
    struct Case
    {
        const char *what;
        std::function<void(Signature &)> spoil;
        const char *answer;
    };
    const Case cases[] = {
        {"key", [](Signature &s) { s.consumerKey[0] = '7'; }, "oauth_problem=consumer_key_unknown"},
        {"application secret", [](Signature &s) { s.consumerSecret += "x"; }, "oauth_problem=signature_invalid"},
        {"token", [](Signature &s) { s.token = "72157600000000000-gone"; }, "oauth_problem=token_rejected"},
        {"token secret", [](Signature &s) { s.tokenSecret = ""; }, "oauth_problem=signature_invalid"},
        {"version", [](Signature &s) { s.version = "2.0"; }, "oauth_problem=version_rejected"},
        {"method", [](Signature &s) { s.method = "PLAINTEXT"; }, "oauth_problem=signature_method_rejected"},
        {"old", [](Signature &s) { s.timestampOffset = -700; }, "oauth_problem=timestamp_refused"},
        {"early", [](Signature &s) { s.timestampOffset = 700; }, "oauth_problem=timestamp_refused"},
        {"url", [](Signature &s) { s.signedUrl = "http://api.flickr.com/services/rest"; },
         "oauth_problem=signature_invalid"},
        {"closing slash", [](Signature &s) { s.signedUrl = "https://api.flickr.com/services/rest/"; },
         "oauth_problem=signature_invalid"},
        {"field",
         [](Signature &s) {
             s.extraSigned = {{"title", "x"}};
         },
         "oauth_problem=signature_invalid"},
        {"no nonce", [](Signature &s) { s.omitted = {"oauth_nonce"}; },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_nonce"},
        {"no key and no time",
         [](Signature &s) {
             s.omitted = {"oauth_consumer_key", "oauth_timestamp"};
         },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_consumer_key%26oauth_timestamp"},
    };
    RunningService service;
    auto client = service.Client();
    for (const auto &spoilt : cases)
    {
        SCOPED_TRACE(spoilt.what);
        Signature signature;
        spoilt.spoil(signature);
        const Answer answer = client.Rest("flickr.test.login", signature);
        EXPECT_EQ(answer.status, 401);
        EXPECT_THAT(answer.contentType, StartsWith("text/plain"));
        EXPECT_THAT(answer.body, StartsWith(spoilt.answer));
    }
    Signature again;
    again.nonce = "only-once";
    EXPECT_THAT(client.Rest("flickr.test.login", again).body, HasSubstr("stat=\"ok\""));
    EXPECT_EQ(client.Rest("flickr.test.login", again).body, "oauth_problem=nonce_used");
    // The version may be left out.
    Signature versionless;
    versionless.omitted = {"oauth_version"};
    EXPECT_THAT(client.Rest("flickr.test.login", versionless).body, HasSubstr("stat=\"ok\""));
}
