#include "LoopbackClient.h"

#include "loopback/UploadParameters.h"

#include <gmock/gmock.h>

#include <fstream>
#include <regex>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

std::string FileBytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The stored file of the only upload.
std::string StoredFile(LoopbackClient &client)
{
    const std::string quoted = JsonValue(client.Admin("uploads").body, "path");
    return quoted.substr(1, quoted.size() - 2);
}

std::string Element(const std::string &xml, const std::string &name)
{
    std::smatch match;
    return std::regex_search(xml, match, std::regex("<" + name + ">([^<]*)</" + name + ">")) ? match[1].str() : "";
}

} // namespace

TEST(UploadService, KeepsBytesAndTextsOfAnyLanguageAsTheyWere)
{
    RunningService service;
    auto client = service.Client();
    UploadFile file{"Grüße aus 東京 😀.jpg"};
    // Any bytes may occur in a picture, also beginnings of the delimiter.
    for (int i = 0; i < 300'000; ++i)
    {
        file.bytes += static_cast<char>(i * 2654435761u >> 13);
        file.bytes += i % 1000 == 0 ? "\r\n-----------" : "";
    }
    const Answer answer = client.Upload({{"title", "Ünïcödé 😀 & <b>"},
                                         {"description", "one\ntwo\r\n=+%26"},
                                         {"tags", "\"a\" \"b c\" \"日本\""},
                                         {"is_public", "0"},
                                         {"is_friend", "1"},
                                         {"is_family", "1"},
                                         {"safety_level", "2"},
                                         {"content_type", "3"},
                                         {"hidden", "2"}},
                                        file);
    EXPECT_EQ(answer.status, 200);
    const std::string id = Element(answer.body, "photoid");
    EXPECT_THAT(answer.body, AllOf(HasSubstr("<rsp stat=\"ok\">"), HasSubstr("<photoid>" + id + "<")));
    const std::string json = client.Admin("uploads").body;
    const std::pair<const char *, std::string> wanted[] = {
        {"id", "\"" + id + "\""},
        {"title", "\"Ünïcödé 😀 & <b>\""},
        {"description", R"("one\u000atwo\u000d\u000a=+%26")"},
        {"tags", R"("\"a\" \"b c\" \"日本\"")"},
        {"is_public", "0"},
        {"is_friend", "1"},
        {"is_family", "1"},
        {"safety_level", "2"},
        {"content_type", "3"},
        {"hidden", "2"},
        {"async", "0"},
        {"file_name", "\"Grüße aus 東京 😀.jpg\""},
        {"mime_type", "\"image/jpeg\""},
        {"size", std::to_string(file.bytes.size())},
        {"user_agent", "\"Halvora/1.2.3.4\""},
    };
    for (const auto &[name, value] : wanted)
    {
        EXPECT_EQ(JsonValue(json, name), value) << name;
    }
    EXPECT_TRUE(FileBytes(StoredFile(client)) == file.bytes);
}

TEST(UploadService, AbsentFieldsHaveTheDefaultsOfTheAccount)
{
    RunningService service;
    auto client = service.Client();
    client.Upload({});
    const std::string json = client.Admin("uploads").body;
    EXPECT_EQ(JsonValue(json, "is_public") + JsonValue(json, "is_friend") + JsonValue(json, "is_family"), "100");
    EXPECT_EQ(JsonValue(json, "safety_level") + JsonValue(json, "content_type") + JsonValue(json, "hidden"),
              "111");
}

TEST(UploadService, RefusesWithTheServicesCodes)
{
    struct Case
    {
        const char *what;
        Fields account;
        Fields fields;
        UploadFile file;
        const char *code;
    };
    const UploadFile jpeg;
    const Case cases[] = {
        {"empty", {}, {}, {"a.jpg", ""}, "4"},
        {"no picture, whatever its name says", {}, {}, {"a.jpg", "GIF88a and so on"}, "5"},
        {"too large", {{"max_file_size", "10"}}, {}, jpeg, "8"},
        {"allowance spent", {{"bandwidth_max", "1000"}, {"bandwidth_used", "990"}}, {}, jpeg, "6"},
        {"visibility", {}, {{"is_public", "2"}}, jpeg, "3"},
        {"safety", {}, {{"safety_level", "0"}}, jpeg, "3"},
        {"content", {}, {{"content_type", ""}}, jpeg, "3"},
        {"not UTF-8", {}, {{"title", "Gr\xFC\xDF"}}, jpeg, "3"},
        {"a field twice", {}, {{"title", "a"}, {"title", "b"}}, jpeg, "3"},
    };
    for (const auto &bad : cases)
    {
        SCOPED_TRACE(bad.what);
        RunningService service;
        auto client = service.Client();
        client.Admin("account", bad.account);
        const Answer answer = client.Upload(bad.fields, bad.file);
        EXPECT_EQ(answer.status, 200);
        EXPECT_THAT(answer.body,
                    AllOf(HasSubstr("<rsp stat=\"fail\">"), HasSubstr(std::string("code=\"") + bad.code + "\"")));
        EXPECT_EQ(client.Admin("uploads").body, "[]\n");
        EXPECT_TRUE(std::filesystem::is_empty(service.Store() / "incoming"));
    }
}

TEST(UploadService, RefusesABodyThatIsNoForm)
{
    RunningService service;
    auto client = service.Client();
    const std::string type = "multipart/form-data; boundary=bb";
    EXPECT_THAT(client
                    .UploadBody(type,
                                "--bb\r\nContent-Disposition: form-data; name=\"title\"\r\n\r\nx\r\n--bb--\r\n",
                                {{"title", "x"}})
                    .body,
                HasSubstr("code=\"2\""));
    EXPECT_THAT(client.UploadBody("application/x-www-form-urlencoded", "title=x", {{"title", "x"}}).body,
                HasSubstr("code=\"2\""));
    EXPECT_THAT(
        client.UploadBody(type, "--bb\r\nContent-Disposition: form-data; name=\"photo\"; filename=\"a\"\r\n\r\nx")
            .body,
        AllOf(HasSubstr("code=\"3\""), HasSubstr("the form has no end")));
    EXPECT_EQ(client.Admin("uploads").body, "[]\n");
}

TEST(UploadService, AStoreThatCannotBeWrittenIsAnAnswerAndNoHang)
{
    RunningService service;
    auto client = service.Client();
    std::filesystem::remove(service.Store() / "incoming");
    UploadFile file;
    file.bytes.resize(3'000'000);
    EXPECT_EQ(client.Upload({}, file).status, 500);
    std::filesystem::create_directory(service.Store() / "incoming");
    EXPECT_THAT(client.Upload({}).body, HasSubstr("photoid"));
    EXPECT_EQ(JsonValue(client.Admin("statistics").body, "secure_connections"), "1");
}

TEST(UploadService, CountsTheAllowanceUntilItIsSpent)
{
    RunningService service;
    auto client = service.Client();
    const auto size = static_cast<long>(UploadFile().bytes.size());
    client.Admin("account", {{"bandwidth_max", std::to_string(2 * size)}});
    EXPECT_THAT(client.Upload({}).body, HasSubstr("photoid"));
    EXPECT_THAT(client.Upload({}).body, HasSubstr("photoid"));
    EXPECT_THAT(client.Upload({}).body, HasSubstr("code=\"6\""));
    EXPECT_THAT(client.Rest("flickr.people.getUploadStatus").body,
                HasSubstr("usedbytes=\"" + std::to_string(2 * size) + "\" remainingbytes=\"0\""));
    client.Admin("account", {{"level", "pro"}});
    EXPECT_THAT(client.Upload({}).body, HasSubstr("photoid"));
    client.Admin("account", {{"refuse_duplicates", "1"}});
    EXPECT_THAT(client.Upload({}).body, HasSubstr("code=\"9\""));
}

TEST(UploadService, AnAsynchronousUploadGivesATicketThatComesToAnEnd)
{
    RunningService service;
    auto client = service.Client();
    const auto check = [&](const std::string &ticket) {
        return client.Rest("flickr.photos.upload.checkTickets", {}, {{"tickets", ticket}}).body;
    };
    const std::string good = Element(client.Upload({{"async", "1"}}).body, "ticketid");
    const std::string bad = Element(client.Upload({{"async", "1"}}, {"a.jpg", "no picture"}).body, "ticketid");
    client.Admin("account", {{"ticket_delay_ms", "60000"}});
    const std::string open = Element(client.Upload({{"async", "1"}}).body, "ticketid");
    EXPECT_THAT(check(good + "," + bad + "," + open + ",0-0"),
                AllOf(HasSubstr("<ticket id=\"" + good + "\" complete=\"1\" photoid=\"539"),
                      HasSubstr("<ticket id=\"" + bad + "\" complete=\"2\"/>"),
                      HasSubstr("<ticket id=\"" + open + "\" complete=\"0\"/>"),
                      HasSubstr("<ticket id=\"0-0\" invalid=\"1\"/>")));
}

TEST(SplitTags, ReadsQuotedAndBareTags)
{
    EXPECT_THAT(loopback::SplitTags("\"a\" \"b c\" d  e\" \" \" \"\" \"open end"),
                ElementsAre("a", "b c", "d", "e\"", "open end"));
    EXPECT_THAT(loopback::SplitTags("  "), ElementsAre());
}
