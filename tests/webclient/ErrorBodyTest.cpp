#include "webclient/ErrorBody.h"
#include "webclient/TransportWords.h"

#include <gmock/gmock.h>

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
    EXPECT_THAT(DescribeErrorBody("oauth_problem=token_rejected\n", {}),
                HasSubstr("authorize again (token_rejected)"));
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
    for (int problem = 0; problem <= static_cast<int>(TransportProblem::Other); ++problem)
    {
        const auto words = WordsFor({static_cast<TransportProblem>(problem), E_ABORT}, "api.example", "picture");
        EXPECT_TRUE(FAILED(words.code));
        EXPECT_FALSE(words.status.empty());
        EXPECT_THAT(words.description, Not(HasSubstr("{"))) << words.description;
    }
    EXPECT_EQ(WordsFor({TransportProblem::EndedByCaller, E_ABORT}, "h", "picture").code, E_ABORT);
    EXPECT_EQ(WordsFor({TransportProblem::NameNotFound}, "h", "picture").code, static_cast<HRESULT>(0x80072EE7));
    EXPECT_THAT(WordsFor({TransportProblem::LostBeforeAnswer}, "h", "picture").description,
                HasSubstr("the picture may or may not have arrived"));
}
} // namespace
