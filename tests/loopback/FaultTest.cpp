#include "LoopbackClient.h"

#include <curl/curl.h>
#include <gmock/gmock.h>

#include <chrono>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

UploadFile Megabytes(int count)
{
    UploadFile file;
    file.bytes.resize(static_cast<std::size_t>(count) * 1'000'000, 'x');
    return file;
}

std::size_t Uploads(LoopbackClient &client)
{
    const std::string list = client.Admin("uploads").body;
    std::size_t count = 0;
    for (auto at = list.find("sha256"); at != std::string::npos; at = list.find("sha256", at + 1))
    {
        ++count;
    }
    return count;
}

double SecondsOf(const std::function<void()> &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace

TEST(Faults, AnswerInPlaceOfTheService)
{
    struct Case
    {
        Fields fault;
        long status;
        const char *type;
        const char *body;
        bool isKept;
    };
    const Case cases[] = {
        {{{"kind", "status"}, {"status", "504"}}, 504, "text/html", "<title>504 Gateway Timeout</title>", false},
        {{{"kind", "status"}, {"status", "401"}, {"body", "oauth_problem=token_rejected"}},
         401,
         "text/plain",
         "oauth_problem=token_rejected",
         false},
        {{{"kind", "status"}, {"store", "1"}}, 503, "text/html", "Service Unavailable", true},
        {{{"kind", "error"}}, 200, "text/xml", "<err code=\"105\" msg=\"Service currently unavailable\"/>", false},
        {{{"kind", "error"}, {"code", "106"}, {"message", "write \"failed\""}},
         200,
         "text/xml",
         "<err code=\"106\" msg=\"write &quot;failed&quot;\"/>",
         false},
        {{{"kind", "garbage"}}, 200, "text/xml", "wireless network & enjoy", true},
    };
    RunningService service;
    auto client = service.Client();
    std::size_t kept = 0;
    for (const auto &wanted : cases)
    {
        SCOPED_TRACE(wanted.body);
        ASSERT_EQ(client.Admin("faults", wanted.fault).status, 200);
        const Answer answer = client.Upload({}, Megabytes(1));
        EXPECT_EQ(answer.status, wanted.status);
        EXPECT_THAT(answer.contentType, StartsWith(wanted.type));
        EXPECT_THAT(answer.body, HasSubstr(wanted.body));
        EXPECT_EQ(Uploads(client), kept += wanted.isKept);
    }
    // The service read every body, so one connection served all requests.
    EXPECT_EQ(JsonValue(client.Admin("statistics").body, "secure_connections"), "1");
}

TEST(Faults, BreakTheConnection)
{
    struct Case
    {
        Fields fault;
        int result;
        bool isKept;
    };
    const Case cases[] = {
        {{{"kind", "cut"}, {"after", "1000000"}}, CURLE_RECV_ERROR, false},
        {{{"kind", "no-answer"}}, CURLE_GOT_NOTHING, true},
        {{{"kind", "truncated"}}, CURLE_PARTIAL_FILE, true},
    };
    RunningService service;
    std::size_t kept = 0;
    for (const auto &wanted : cases)
    {
        SCOPED_TRACE(wanted.fault[0].second);
        auto client = service.Client();
        client.Admin("faults", wanted.fault);
        const Answer answer = client.Upload({}, Megabytes(8));
        // Either the sending or the receiving side of the client may see the reset first.
        EXPECT_EQ(answer.result == CURLE_SEND_ERROR ? CURLE_RECV_ERROR : answer.result, wanted.result);
        EXPECT_EQ(Uploads(client), kept += wanted.isKept);
        EXPECT_THAT(client.Upload({}).body, HasSubstr("photoid"));
        ++kept;
        EXPECT_TRUE(std::filesystem::is_empty(service.Store() / "incoming"));
    }
}

TEST(Faults, TakeTheirTime)
{
    RunningService service;
    auto client = service.Client();
    const Fields slow[] = {
        {{"kind", "delay"}, {"ms", "300"}},
        {{"kind", "stall"}, {"ms", "300"}, {"after", "500000"}},
        {{"kind", "slow"}, {"rate", "3000000"}},
    };
    for (const auto &fault : slow)
    {
        SCOPED_TRACE(fault[0].second);
        client.Admin("faults", fault);
        std::string body;
        EXPECT_GE(SecondsOf([&] { body = client.Upload({}, Megabytes(1)).body; }), 0.29);
        EXPECT_THAT(body, HasSubstr("photoid"));
    }
}

TEST(Faults, StrikeTheRequestsTheyAreMeantFor)
{
    RunningService service({.faults = {"kind=status&status=500&target=upload&skip=1&count=2"}});
    auto client = service.Client();
    std::string statuses;
    for (int i = 0; i < 5; ++i)
    {
        statuses += std::to_string(client.Upload({}).status) + " ";
        EXPECT_EQ(client.Rest("flickr.test.login").status, 200);
    }
    EXPECT_EQ(statuses, "200 500 500 200 200 ");
    for (const auto &mistake : {Fields{{"kind", "smoke"}}, Fields{{"kind", "cut"}, {"aftre", "1"}},
                                Fields{{"kind", "status"}, {"status", "abc"}}})
    {
        EXPECT_EQ(client.Admin("faults", mistake).status, 400);
    }
}
