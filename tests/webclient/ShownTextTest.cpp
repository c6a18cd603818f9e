#include "webclient/HttpTransport.h"
#include "webclient/ShownText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <set>
#include <string>

namespace
{
using testing::HasSubstr;
using testing::Not;

TEST(ErrorBody, SaysInOneLineWhatThePageSaid)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {" \r\n", ""},
        {"Rate limit exceeded.\r\nTry later.\r\n", "Rate limit exceeded. Try later."},
        {"\xEF\xBB\xBF<!DOCTYPE html>\n<html><head>\n<TITLE lang=en>\n 504  Gateway\nTime-out &amp; more</TITLE>"
         "<script>x</script></head><body>long</body></html>",
         "504 Gateway Time-out & more"},
        {"<html><body><h1>Bad, <b>bad</b> gateway</h1>text</body></html>", "Bad, bad gateway"},
        {"<html><head><title></title></head><body>text</body></html>", ""},
        {"<html><title>never closed", ""},
        {"&amp;lt; stays", "&amp;lt; stays"},
        {"<title>&quot;a&nbsp;b&quot; &mdash; c&ndash;d &#39;e&apos;</title>", "\"a b\" \xE2\x80\x94 c\xE2\x80\x93"
                                                                               "d 'e'"},
        {"<title>&amp;lt;b&amp;gt;</title>", "&lt;b&gt;"},
        {std::string("GIF89a\x01\x00\x02", 9), ""},
        {"two\fpages", "two pages"},
    };
    for (const auto &[body, expected] : cases)
    {
        EXPECT_EQ(DescribeErrorBody(body, {}), expected) << body;
    }
}

TEST(ErrorBody, OAuthProblemsArePutPlainlyAndWithoutTheirDetails)
{
    const std::string signature = DescribeErrorBody(
        "oauth_problem=signature_invalid&debug_sbs=POST&https%3A%2F%2Fapi&oauth_token%3Dsecret-token", {});
    EXPECT_EQ(signature, "The service did not accept the signature of the request (signature_invalid)");
    const std::pair<std::string, std::string> problems[] = {
        {"signature_method_rejected", "does not accept this way of signing"},
        {"token_rejected", "does not know the authorization, or it was revoked: authorize again"},
        {"token_expired", "authorization has expired: authorize again"},
        {"token_revoked", "authorization was revoked: authorize again"},
        {"token_used", "authorization was already used: authorize again"},
        {"verifier_invalid", "did not accept the verifier of the authorization"},
        {"permission_denied", "permission was denied"},
        {"permission_unknown", "permission is still open"},
        {"user_refused", "user refused the authorization"},
        {"additional_authorization_required", "authorization does not cover this"},
        {"consumer_key_unknown", "does not know this application's key"},
        {"consumer_key_rejected", "does not accept this application's key"},
        {"consumer_key_refused", "refuses this application for now"},
        {"timestamp_refused", "is the clock of this computer right?"},
        {"nonce_used", "has seen this request before"},
        {"version_rejected", "does not accept this version of OAuth"},
        {"parameter_rejected", "did not accept a parameter of the request"},
    };
    for (const auto &[problem, words] : problems)
    {
        EXPECT_THAT(DescribeErrorBody("oauth_problem=" + problem + "\n", {}),
                    testing::EndsWith(words + " (" + problem + ")"));
    }
    EXPECT_EQ(
        DescribeErrorBody("oauth_problem=parameter_absent&oauth_parameters_absent=oauth_nonce%26oauth_token", {}),
        "The request lacked a parameter: oauth_nonce oauth_token (parameter_absent)");
    EXPECT_EQ(DescribeErrorBody("oauth_problem=Brand_new<b{z9", {}),
              "The service refused the request (Brand_new b z9)");
}

TEST(ErrorBody, LongTextIsCutBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 1000; ++i)
    {
        text += "\xC3\xA4";
    }
    const std::string line = DescribeErrorBody(text, {});
    EXPECT_EQ(line.size(), 200 * 2 + 3u);
    EXPECT_TRUE(line.ends_with("\xC3\xA4..."));
    const std::string smile = "\xF0\x9F\x98\x80"; // two units of UTF-16, the first of them the 200th
    EXPECT_EQ(DescribeErrorBody(std::string(199, 'x') + smile, {}), std::string(199, 'x') + "...");
}

TEST(ErrorBody, StatusesHaveTheNamesOfTheirStandard)
{
    std::string names;
    for (int status = 0; status < 600; ++status)
    {
        const std::string_view words = StandardStatusWords(status);
        names += words.empty() ? "" : std::to_string(status) + " " + std::string(words) + "; ";
    }
    EXPECT_EQ(names, "200 OK; 301 Moved Permanently; 302 Found; 303 See Other; 304 Not Modified; "
                     "307 Temporary Redirect; 308 Permanent Redirect; 400 Bad Request; 401 Unauthorized; "
                     "403 Forbidden; 404 Not Found; 405 Method Not Allowed; 408 Request Timeout; "
                     "411 Length Required; 413 Content Too Large; 415 Unsupported Media Type; "
                     "429 Too Many Requests; 500 Internal Server Error; 501 Not Implemented; 502 Bad Gateway; "
                     "503 Service Unavailable; 504 Gateway Timeout; ");
}

TEST(TransportWords, EveryProblemFailsWithWords)
{
    std::string codes, unknown;
    std::set<std::string> descriptions;
    for (int problem = 0; problem <= static_cast<int>(TransportProblem::Other); ++problem)
    {
        const auto words = WordsFor({static_cast<TransportProblem>(problem), E_ABORT}, "api.example", "picture");
        EXPECT_FALSE(words.status.empty());
        EXPECT_THAT(words.description, Not(HasSubstr("{"))) << words.description;
        char code[9];
        std::snprintf(code, sizeof code, "%x", static_cast<unsigned>(words.code) & 0xFFFF);
        codes += code + std::string(" ");
        unknown += words.description.find("the picture may or may not have arrived") != std::string::npos
                       ? std::to_string(problem) + " "
                       : "";
        descriptions.insert(words.description);
    }
    // The codes of WinINet without their facility; the last four are the error's own.
    EXPECT_EQ(codes,
              "2ee7 2ee7 2eef 2efd 2efd 2ee2 2ee2 2ee2 2efe 2efe 2efe 2f05 2f05 2f06 2f0d 2f8f 2f8f 2f78 2f78 "
              "4004 4004 4004 4004 ");
    EXPECT_EQ(unknown, "7 10 17 18 21 ") << "no answer though all was sent";
    EXPECT_EQ(descriptions.size(), 22u) << "each has its own, but for the two of a connection that was lost";
    const std::pair<TransportProblem, const char *> ofTheSameCode[] = {
        {TransportProblem::NameNotFound, "name h was not found"},
        {TransportProblem::ProxyNotFound, "name of the proxy"},
        {TransportProblem::ConnectTimedOut, "h timed out"},
        {TransportProblem::SendStalled, "no byte moved"},
        {TransportProblem::ProxyRefused, "it answered"},
        {TransportProblem::CannotConnect, "was refused"},
        {TransportProblem::CertificateExpired, "has expired"},
        {TransportProblem::CertificateNotYetValid, "not valid yet"},
        {TransportProblem::TrustFileUnreadable, "can't be read"},
        {TransportProblem::TlsFailed, "No secure connection"},
        {TransportProblem::AnswerTooLong, "more than 256 KB"},
        {TransportProblem::BodyUnreadable, "it did not arrive."},
    };
    for (const auto &[problem, words] : ofTheSameCode)
    {
        EXPECT_THAT(WordsFor({problem}, "h", "picture").description, HasSubstr(words));
    }
    EXPECT_EQ(WordsFor({TransportProblem::NameNotFound}, "h", "picture").code, static_cast<HRESULT>(0x80072EE7));
    EXPECT_EQ(WordsFor({TransportProblem::EndedByCaller, E_ABORT}, "h", "picture").code, E_ABORT);
}
} // namespace
