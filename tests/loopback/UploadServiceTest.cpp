#include "LoopbackClient.h"

#include "loopback/PhotoIndex.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace
{

std::string FileBytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
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
    const Json wanted = {{"title", "Ünïcödé 😀 & <b>"},
                         {"description", "one\ntwo\r\n=+%26"},
                         {"tags", "\"a\" \"b c\" \"日本\""},
                         {"is_public", "0"},
                         {"is_friend", "1"},
                         {"is_family", "1"},
                         {"safety_level", "2"},
                         {"content_type", "3"},
                         {"hidden", "2"},
                         {"async", "1"}};
    const auto texts = wanted.get<std::map<std::string, std::string>>();
    const Answer answer = client.Upload(Fields(texts.begin(), texts.end()), file);
    EXPECT_THAT(answer.body, MatchesRegex("<\\?xml .*<rsp stat=\"ok\">\n<ticketid>[0-9-]+</ticketid>\n</rsp>\n"));
    const Json upload = client.Uploads().at(0);
    for (const auto &[name, value] : wanted.items())
    {
        const Json &found = upload.at(name);
        EXPECT_EQ(found.is_number() ? Json(found.dump()) : found, value) << name;
    }
    EXPECT_EQ(upload.at("file_name"), file.name);
    EXPECT_EQ(upload.at("mime_type"), "image/jpeg");
    EXPECT_EQ(upload.at("size"), file.bytes.size());
    EXPECT_EQ(upload.at("user_agent"), "Halvora/1.2.3.4");
    EXPECT_TRUE(FileBytes(upload.at("path")) == file.bytes);
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
        EXPECT_TRUE(client.Uploads().empty());
        EXPECT_TRUE(std::filesystem::is_empty(service.Store() / "incoming"));
    }
}

TEST(SplitTags, ReadsQuotedAndBareTags)
{
    EXPECT_THAT(loopback::SplitTags("\"a\" \"b c\" d  e\" \" \" \"\" \"open end"),
                ElementsAre("a", "b c", "d", "e\"", "open end"));
    EXPECT_THAT(loopback::SplitTags("  "), ElementsAre());
}
