#include "loopback/OAuthVerifier.h"

#include <gmock/gmock.h>

using loopback::HttpRequest;
using loopback::OAuthVerifier;
using testing::StartsWith;

namespace
{

std::int64_t g_now = 0;

OAuthVerifier ExampleVerifier()
{
    return OAuthVerifier(
        {"dpf43f3p2l4k3l03", "kd94hf93k423kf44"},
        [](const std::string &token) {
            return token == "nnch734d00sl2jdk" ? std::optional<std::string>("pfkkdhi9sl3r4s00") : std::nullopt;
        },
        [] { return g_now; });
}

// The authenticated request of RFC 5849, section 1.2.
HttpRequest ExampleRequest()
{
    return {"GET",
            "/photos?file=vacation.jpg&size=original",
            "photos.example.net",
            {{"authorization", "OAuth realm=\"Photos\",\r\n oauth_consumer_key=\"dpf43f3p2l4k3l03\",\r\n"
                               " oauth_token=\"nnch734d00sl2jdk\", oauth_signature_method=\"HMAC-SHA1\",\r\n"
                               " oauth_timestamp=\"137131202\", oauth_nonce=\"chapoH\",\r\n"
                               " oauth_signature=\"MdpQcU8iPSUjWoN%2FUDMsK2sui9I%3D\""}}};
}

} // namespace

TEST(OAuthVerifier, AcceptsThePublishedRequestOnceAndInItsTime)
{
    auto verifier = ExampleVerifier();
    g_now = 137131202;
    const auto first = verifier.Check(ExampleRequest(), {});
    EXPECT_TRUE(first.accepted) << first.problem;
    EXPECT_EQ(first.token, "nnch734d00sl2jdk");
    EXPECT_EQ(verifier.Check(ExampleRequest(), {}).problem, "oauth_problem=nonce_used");
    for (const std::int64_t offset : {-601, 601})
    {
        g_now = 137131202 + offset;
        EXPECT_THAT(verifier.Check(ExampleRequest(), {}).problem, StartsWith("oauth_problem=timestamp_refused"));
    }
    // Forgetting old nonces must not open the window again.
    g_now = 137131202 + 600;
    EXPECT_EQ(verifier.Check(ExampleRequest(), {}).problem, "oauth_problem=nonce_used");
}

TEST(OAuthVerifier, AForgedRequestDoesNotUseUpTheNonce)
{
    auto verifier = ExampleVerifier();
    g_now = 137131202;
    HttpRequest forged = ExampleRequest();
    forged.target = "/photos?file=another.jpg&size=original";
    EXPECT_THAT(verifier.Check(forged, {}).problem,
                StartsWith("oauth_problem=signature_invalid&debug_sbs=GET&http"));
    EXPECT_TRUE(verifier.Check(ExampleRequest(), {}).accepted);
}

TEST(OAuthVerifier, RefusesEachSpoiltPieceByItsName)
{
    // What is replaced in the published request, by what, and the answer.
    const struct
    {
        const char *from;
        const char *to;
        const char *problem;
    } cases[] = {
        {"dpf43f3p", "dpf43f3q", "consumer_key_unknown"},
        {"nnch734d", "nnch734e", "token_rejected"},
        {"MdpQcU8i", "MdpQcU8j", "signature_invalid&debug_sbs=GET&http"},
        {"oauth_nonce=\"chapoH\"", "oauth_version=\"2.0\", oauth_nonce=\"chapoH\"", "version_rejected"},
        {"HMAC-SHA1", "PLAINTEXT", "signature_method_rejected"},
        {"137131202", "13713120x", "timestamp_refused"},
        {"oauth_nonce=\"chapoH\"", "oauth_nonce=\"a\", oauth_nonce=\"b\"",
         "parameter_rejected&oauth_parameters_rejected=oauth_nonce"},
        {"oauth_nonce", "nonce", "parameter_absent&oauth_parameters_absent=oauth_nonce"},
        {"oauth_consumer_key=\"dpf43f3p2l4k3l03\",\r\n", "",
         "parameter_absent&oauth_parameters_absent=oauth_consumer_key"},
    };
    g_now = 137131202;
    for (const auto &[from, to, problem] : cases)
    {
        HttpRequest request = ExampleRequest();
        std::string &header = request.headers["authorization"];
        header.replace(header.find(from), std::string(from).size(), to);
        EXPECT_THAT(ExampleVerifier().Check(request, {}).problem,
                    StartsWith(std::string("oauth_problem=") + problem));
    }
    // Everything else that is signed: method, scheme, host, path, and the fields of the body.
    for (const auto &spoil : std::initializer_list<std::function<void(HttpRequest &)>>{
             [](HttpRequest &r) { r.method = "POST"; }, [](HttpRequest &r) { r.secure = true; },
             [](HttpRequest &r) { r.host += ":8080"; },
             [](HttpRequest &r) { r.target.replace(0, 7, "/photos/"); }})
    {
        HttpRequest request = ExampleRequest();
        spoil(request);
        EXPECT_THAT(ExampleVerifier().Check(request, {}).problem, StartsWith("oauth_problem=signature_invalid"))
            << request.method << " " << request.host << request.target;
    }
    EXPECT_FALSE(ExampleVerifier().Check(ExampleRequest(), {{"title", "x"}}).accepted);
    EXPECT_TRUE(ExampleVerifier().Check({"GET", "/photos", "photos.example.net"}, {}).isUnsigned);
}
